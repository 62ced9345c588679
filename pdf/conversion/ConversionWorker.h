#pragma once

#include "pdf/conversion/ConversionProgress.h"
#include "pdf/conversion/Result.h"

#include <QByteArray>
#include <QObject>

#include <functional>
#include <thread>

/// One conversion in a thread of its own.
///
/// When this object ends, or the application is about to, the conversion is stopped, with Audiveris and everything it
/// has started, and its folder removed; its result is dropped then. Main thread only.
class ConversionWorker final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(ConversionWorker)

public:
    using Arrived = std::function<void(const PDFConverter::Result<QByteArray> &)>;

    /// Starts at once.
    /// @param audiveris Audiveris's executable
    /// @param arrived called once, on the main thread, with the MusicXML or the failure
    /// @param report called on the main thread
    ConversionWorker(
        const QString &pdf, const QString &audiveris, Arrived arrived, PDFConverter::ProgressReport report);
    ~ConversionWorker() override;

private:
    void stop();

    const Arrived m_arrived;
    const PDFConverter::ProgressReport m_report;
    std::jthread m_thread;
};
