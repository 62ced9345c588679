#pragma once

#include "controller/AlphaTabController.h"

#include <QCoreApplication>
#include <QElapsedTimer>

/// Loads the PDF at `url` and waits until it is shown; false when it never is.
inline bool openPDF(AlphaTabController &controller, const QUrl &url)
{
    constexpr int openingTimeoutMs = 30'000;
    const auto before = controller.pdfDocument.value();
    controller.load(url);
    QElapsedTimer timer;
    timer.start();
    while (controller.pdfURL.value() != url || controller.pdfDocument.value() == before) {
        if (timer.hasExpired(openingTimeoutMs))
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
    }
    return true;
}
