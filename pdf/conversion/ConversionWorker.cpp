#include "pdf/conversion/ConversionWorker.h"

#include "pdf/conversion/PDFConverter.h"

#include <QCoreApplication>

ConversionWorker::ConversionWorker(
    const QString &pdf, const QString &audiveris, Arrived arrived, PDFConverter::ProgressReport report)
    : m_arrived(std::move(arrived))
    , m_report(std::move(report))
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &ConversionWorker::stop);
    m_thread = std::jthread([this, pdf, audiveris](const std::stop_token &stopping) {
        const auto post = [this, stopping](const PDFConverter::Progress &progress) {
            QMetaObject::invokeMethod(
                this,
                [this, stopping, progress] {
                    if (!stopping.stop_requested())
                        m_report(progress);
                },
                Qt::QueuedConnection);
        };
        auto result = PDFConverter::convert(pdf, audiveris, std::nullopt, stopping, post);
        // This object waits for the thread before it ends, and takes what was posted to it along.
        QMetaObject::invokeMethod(
            this,
            [this, stopping, result = std::move(result)] {
                if (stopping.stop_requested())
                    return;
                // The receiver may well begin the next conversion, and end this object.
                const Arrived receiver = m_arrived;
                receiver(result);
            },
            Qt::QueuedConnection);
    });
}

ConversionWorker::~ConversionWorker() { stop(); }

void ConversionWorker::stop()
{
    if (!m_thread.joinable())
        return;
    m_thread.request_stop();
    m_thread.join();
}
