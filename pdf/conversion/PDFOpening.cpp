#include "pdf/conversion/PDFOpening.h"

#include "pdf/conversion/PDFDocument.h"

#include <QCoreApplication>

PDFOpening::PDFOpening(const QString &path, Arrived arrived)
    : m_arrived(std::move(arrived))
{
    connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, this, &PDFOpening::stop);
    m_thread = std::jthread([this, path](const std::stop_token &stopping) {
        std::shared_ptr<PDFDocument> document = PDFDocument::open(path, stopping);
        // This object waits for the thread before it ends, and takes what was posted to it along.
        QMetaObject::invokeMethod(
            this,
            [this, stopping, document = std::move(document)] {
                if (stopping.stop_requested())
                    return;
                // The receiver may well begin the next opening, and end this object.
                const Arrived receiver = m_arrived;
                receiver(document);
            },
            Qt::QueuedConnection);
    });
}

PDFOpening::~PDFOpening() { stop(); }

void PDFOpening::stop()
{
    if (!m_thread.joinable())
        return;
    m_thread.request_stop();
    m_thread.join();
}
