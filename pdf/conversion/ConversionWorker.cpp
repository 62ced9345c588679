#include "pdf/conversion/ConversionWorker.h"

#include "pdf/conversion/PDFConverter.h"

#include <QCoreApplication>

ConversionWorker::ConversionWorker(const QString &pdf, const QString &audiveris, Arrived arrived)
    : m_arrived(std::move(arrived))
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &ConversionWorker::stop);
    m_thread = std::jthread([this, pdf, audiveris](const std::stop_token &stopping) {
        auto outcome = PDFConverter::convert(pdf, audiveris, std::nullopt, stopping);
        // This object waits for the thread before it ends, and takes what was posted to it along.
        QMetaObject::invokeMethod(
            this,
            [this, stopping, outcome = std::move(outcome)] {
                if (stopping.stop_requested())
                    return;
                // The receiver may well begin the next conversion, and end this object.
                const Arrived receiver = m_arrived;
                receiver(outcome);
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
