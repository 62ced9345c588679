#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <thread>

class PDFDocument;

/// Opens one PDF in a thread of its own.
///
/// When this object ends, or the application is about to, the opening is stopped; its result is dropped then. Main
/// thread only, which does not wait for the file.
class PDFOpening final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFOpening)

public:
    /// Takes the document, null where it could not be opened.
    using Arrived = std::function<void(const std::shared_ptr<PDFDocument> &)>;

    /// Starts at once.
    /// @param arrived called once, on the main thread
    PDFOpening(const QString &path, Arrived arrived);
    ~PDFOpening() override;

private:
    void stop();

    const Arrived m_arrived;
    std::jthread m_thread;
};
