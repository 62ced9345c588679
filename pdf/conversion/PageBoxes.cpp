#include "pdf/conversion/PageBoxes.h"

#include <QFile>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

#include <algorithm>

namespace {

/// What a page without any box is taken to be, as the drawing library does: US letter.
const QRectF letter(0, 0, 612, 792);

std::optional<QRectF> rectangle(QPDFObjectHandle object)
{
    if (!object.isRectangle())
        return std::nullopt;
    const QPDFObjectHandle::Rectangle box = object.getArrayAsRectangle();
    // The two corners may come in either order.
    return QRectF(QPointF(box.llx, box.lly), QPointF(box.urx, box.ury)).normalized();
}

int rotationOf(QPDFPageObjectHelper &page)
{
    QPDFObjectHandle value = page.getAttribute("/Rotate", false);
    if (!value.isInteger())
        return 0;
    const int quarters = int(value.getIntValue() / 90 % 4);
    return 90 * ((quarters + 4) % 4);
}

PageBox boxOf(QPDFPageObjectHelper &page)
{
    PageBox box;
    box.media = rectangle(page.getAttribute("/MediaBox", false)).value_or(letter);
    box.crop = rectangle(page.getAttribute("/CropBox", false)).value_or(box.media) & box.media;
    if (box.crop.isEmpty())
        box.crop = box.media;
    box.rotation = rotationOf(page);
    return box;
}

} // namespace

namespace PageBoxes {

std::optional<std::vector<PageBox>> read(const QString &path)
{
    try {
        QPDF document;
        document.setSuppressWarnings(true);
        document.processFile(QFile::encodeName(path).constData());
        return read(document);
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

std::optional<std::vector<PageBox>> read(QPDF &document)
{
    try {
        std::vector<PageBox> boxes;
        for (QPDFPageObjectHelper &page : QPDFPageDocumentHelper(document).getAllPages())
            boxes.push_back(boxOf(page));
        return boxes;
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

} // namespace PageBoxes
