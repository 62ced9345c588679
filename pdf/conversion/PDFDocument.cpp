#include "pdf/conversion/PDFDocument.h"

#include <QFileInfo>
#include <QImage>
#include <QPainter>
#include <QPdfDocument>
#include <QThreadPool>

#include <algorithm>

namespace {

/// How many times larger a picture is drawn before it is made small. The library draws no line thinner than a pixel, so
/// that on a thumbnail staves would be black bars.
int enlargement(QSize size)
{
    constexpr int enough = 600;
    constexpr qint64 tooMuch = 4'000'000;
    int factor = std::clamp(enough / size.width(), 1, 6);
    while (factor > 1 && qint64(size.width()) * size.height() * factor * factor > tooMuch)
        --factor;
    return factor;
}

/// What the drawing library takes the displayed pages for, where the file's own words cannot be had.
std::vector<PageBox> sizesAsDrawn(const QPdfDocument &document)
{
    std::vector<PageBox> boxes;
    for (int i = 0; i < document.pageCount(); ++i) {
        const QRectF sheet(QPointF(), document.pagePointSize(i));
        boxes.push_back({ .media = sheet, .crop = sheet });
    }
    return boxes;
}

void layOnWhite(QImage &image)
{
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationOver);
    painter.fillRect(image.rect(), Qt::white);
    painter.end();
    image.convertTo(QImage::Format_RGB32);
}

} // namespace

PDFDocument::PDFDocument(std::unique_ptr<QPdfDocument> document, std::vector<PageBox> boxes)
    : m_document(std::move(document))
    , m_boxes(std::move(boxes))
{
    // Of no thread: it is drawn from and closed on any.
    m_document->moveToThread(nullptr);
}

PDFDocument::~PDFDocument() = default;

std::shared_ptr<PDFDocument> PDFDocument::open(const QString &path)
{
    // A pipe or a device would keep the window waiting for its end.
    if (!QFileInfo(path).isFile())
        return nullptr;
    std::optional<std::vector<PageBox>> boxes = PageBoxes::read(path);
    // Not for the drawing library's eyes: see there.
    if (boxes && boxes->empty())
        return nullptr;
    auto document = std::make_unique<QPdfDocument>(nullptr);
    if (document->load(path) != QPdfDocument::Error::None || document->pageCount() < 1)
        return nullptr;
    // In a damaged file each library may find pages that the other one does not.
    if (!boxes || boxes->size() != size_t(document->pageCount()))
        boxes = sizesAsDrawn(*document);
    // Closing takes the library, which may be drawing a page for somebody else.
    const auto closeElsewhere
        = [](PDFDocument *done) { QThreadPool::globalInstance()->start([done] { delete done; }); };
    return { new PDFDocument(std::move(document), *std::move(boxes)), closeElsewhere };
}

const PageBox *PDFDocument::box(int index) const
{
    return index >= 0 && index < pageCount() ? &m_boxes[size_t(index)] : nullptr;
}

QImage PDFDocument::picture(int index, QSize size) const
{
    if (!box(index) || size.isEmpty())
        return {};
    const int factor = enlargement(size);
    QImage image = m_document->render(index, size * factor);
    if (image.isNull())
        return {};
    layOnWhite(image);
    return factor == 1 ? image : image.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}
