#pragma once

#include "pdf/conversion/Outcome.h"

#include <QByteArray>
#include <QObject>

#include <functional>
#include <thread>

/// One conversion in a thread of its own.
///
/// When this object ends, or the application is about to, the conversion is stopped, with the engine and everything the
/// engine has started, and its folder removed; its outcome is dropped then. Main thread only.
class ConversionWorker final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ConversionWorker)

public:
    using Arrived = std::function<void(const PDFConverter::Outcome<QByteArray> &)>;

    /// Starts at once.
    /// @param audiveris the engine's executable
    /// @param arrived called once, on the main thread, with the MusicXML or the failure
    ConversionWorker(const QString &pdf, const QString &audiveris, Arrived arrived);
    ~ConversionWorker() override;

private:
    void stop();

    const Arrived m_arrived;
    std::jthread m_thread;
};
