#include "engine_host/PaperPrinting.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QPdfDocument>
#include <QPrinter>

#include <utility>

namespace {

/// A page on white paper; null where it cannot be drawn.
QImage drawn(QPdfDocument &document, int page, QSize dots)
{
    QImage image = document.render(page, dots);
    if (image.isNull())
        return {};
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(image.rect(), Qt::white);
    painter.end();
    // The printer would get a mask beside the picture for what can be seen through.
    image.convertTo(QImage::Format_RGB32);
    return image;
}

} // namespace

bool PaperPrinting::print(QByteArray pdf, QPrinter &printer)
{
    QBuffer buffer(&pdf);
    QPdfDocument document;
    if (!buffer.open(QIODevice::ReadOnly))
        return false;
    document.load(&buffer);
    const int count = document.pageCount();
    if (document.status() != QPdfDocument::Status::Ready || count == 0)
        return false;

    // The pages have their margins in them.
    printer.setFullPage(true);
    const QSize dots = printer.pageLayout().fullRectPixels(printer.resolution()).size();
    const bool lastFirst = printer.pageOrder() == QPrinter::LastPageFirst;
    QPainter painter;
    for (int index = 0; index < count; ++index) {
        const QImage image = drawn(document, lastFirst ? count - 1 - index : index, dots);
        const bool ready = index == 0 ? painter.begin(&printer) : printer.newPage();
        if (image.isNull() || !ready) {
            if (painter.isActive())
                printer.abort();
            return false;
        }
        // Otherwise it would be a JPEG, with a haze around each line.
        painter.setRenderHint(QPainter::LosslessImageRendering);
        painter.drawImage(QPoint(), image);
    }
    return painter.end();
}
