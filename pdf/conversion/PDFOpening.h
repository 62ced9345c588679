#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <stop_token>

class PDFDocument;

/// Opens one PDF in a thread of its own.
///
/// When this object ends, or the application is about to, the opening is stopped; its result is dropped then. Main
/// thread only, which does not wait for the file.
class PDFOpening final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(PDFOpening)

public:
    struct Result {
        /// Null where the file could not be opened.
        std::shared_ptr<PDFDocument> document;
        /// Whether that is why.
        bool tooLarge = false;
    };
    using Arrived = std::function<void(const Result &)>;

    /// Starts at once.
    /// @param largestFile what is larger is not opened, in bytes
    /// @param arrived called once, on the main thread
    PDFOpening(const QString &path, qint64 largestFile, Arrived arrived);
    ~PDFOpening() override;

private:
    struct Shared;

    void stop();

    std::stop_source m_stop;
    const std::shared_ptr<Shared> m_shared;
};
