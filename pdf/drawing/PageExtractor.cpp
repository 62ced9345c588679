#include "pdf/drawing/PageExtractor.h"

#include <qpdf/Buffer.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>

#include <algorithm>
#include <cmath>
#include <set>

namespace {

/// Three PDF units are 25 pixels at 600 dpi.
constexpr int unitsOfWholePixels = 3;

/// Far beyond every page; keeps the arithmetic on whole units from running over.
constexpr double farthest = 1e8;

struct Span {
    int first;
    int length;
};

/// The least span that begins at a whole unit, is a multiple of three long and covers `from`...`to`.
Span wholeUnits(double from, double to)
{
    const double first = std::floor(std::clamp(from, -farthest, farthest));
    const double threes = std::ceil((std::clamp(to, -farthest, farthest) - first) / unitsOfWholePixels);
    return { int(first), unitsOfWholePixels * std::max(1, int(threes)) };
}

QRect drawnBoxAround(const QRectF &media)
{
    const Span across = wholeUnits(media.left(), media.right());
    const Span upwards = wholeUnits(media.top(), media.bottom());
    return { across.first, upwards.first, across.length, upwards.length };
}

QPDFObjectHandle boxArray(const QRect &box)
{
    return QPDFObjectHandle::newArray(
        QPDFObjectHandle::Rectangle(box.x(), box.y(), double(box.x()) + box.width(), double(box.y()) + box.height()));
}

/// The page's dictionary with what its drawing takes, and no more.
QPDFObjectHandle drawingOf(QPDFPageObjectHelper &page, const QRect &drawnBox)
{
    // Producers that list all pictures of the document on every page would have all of them copied with each.
    QPDFObjectHandle resources = page.getAttribute("/Resources", false);
    if (resources.isDictionary() && resources.getKey("/XObject").isDictionary()
        && resources.getKey("/XObject").getKeys().size() > 1)
        page.removeUnreferencedResources();

    QPDFObjectHandle drawing = QPDFObjectHandle::newDictionary();
    drawing.replaceKey("/Type", QPDFObjectHandle::newName("/Page"));
    for (const char *key : { "/Contents", "/Resources", "/Group", "/Rotate" }) {
        QPDFObjectHandle value = page.getAttribute(key, false);
        if (!value.isNull())
            drawing.replaceKey(key, value);
    }
    drawing.replaceKey("/MediaBox", boxArray(drawnBox));
    return drawing;
}

/// Whether the page, or a form on it, has a picture among its resources.
bool showsPictures(QPDFPageObjectHelper &page)
{
    std::vector<QPDFObjectHandle> waiting{ page.getAttribute("/Resources", false) };
    std::set<QPDFObjGen> visited;
    while (!waiting.empty()) {
        QPDFObjectHandle resources = waiting.back();
        waiting.pop_back();
        if (!resources.isDictionary())
            continue;
        QPDFObjectHandle drawn = resources.getKey("/XObject");
        if (!drawn.isDictionary())
            continue;
        for (const std::string &name : drawn.getKeys()) {
            QPDFObjectHandle object = drawn.getKey(name);
            if (!object.isStream() || !visited.insert(object.getObjGen()).second)
                continue;
            QPDFObjectHandle kind = object.getDict().getKey("/Subtype");
            if (kind.isNameAndEquals("/Image"))
                return true;
            waiting.push_back(object.getDict().getKey("/Resources"));
        }
    }
    return false;
}

/// Layers that are switched off stay so.
void copyLayers(QPDF &from, QPDF &to)
{
    QPDFObjectHandle layers = from.getRoot().getKey("/OCProperties");
    if (!layers.isDictionary())
        return;
    if (!layers.isIndirect()) {
        layers = from.makeIndirectObject(layers);
        from.getRoot().replaceKey("/OCProperties", layers);
    }
    to.getRoot().replaceKey("/OCProperties", to.copyForeignObject(layers));
}

QByteArray fileOf(QPDF &document)
{
    QPDFWriter writer(document);
    writer.setOutputMemory();
    writer.setStreamDataMode(qpdf_s_preserve);
    writer.write();
    const std::shared_ptr<Buffer> bytes = writer.getBufferSharedPointer();
    return { reinterpret_cast<const char *>(bytes->getBuffer()), qsizetype(bytes->getSize()) };
}

} // namespace

PageExtractor::PageExtractor(std::unique_ptr<QPDF> document, std::vector<PageBox> boxes)
    : m_document(std::move(document))
    , m_boxes(std::move(boxes))
{
}

PageExtractor::~PageExtractor() = default;

std::unique_ptr<PageExtractor> PageExtractor::open(const QByteArray &file)
{
    try {
        auto document = std::make_unique<QPDF>();
        document->setSuppressWarnings(true);
        document->processMemoryFile("the PDF", file.constData(), std::size_t(file.size()));
        std::optional<std::vector<PageBox>> boxes = PageBoxes::read(*document);
        if (!boxes)
            return nullptr;
        return std::unique_ptr<PageExtractor>(new PageExtractor(std::move(document), std::move(*boxes)));
    } catch (const std::exception &) {
        return nullptr;
    }
}

std::optional<ExtractedPage> PageExtractor::page(int index)
{
    try {
        const PageBox &box = m_boxes.at(std::size_t(index));
        QPDFPageObjectHelper original(m_document->getAllPages().at(std::size_t(index)));
        ExtractedPage taken{ {}, box.media, drawnBoxAround(box.media), box.rotation, showsPictures(original) };
        const QPDFObjectHandle drawing = m_document->makeIndirectObject(drawingOf(original, taken.drawnBox));

        QPDF alone;
        alone.setSuppressWarnings(true);
        alone.emptyPDF();
        copyLayers(*m_document, alone);
        alone.addPage(alone.copyForeignObject(drawing), true);
        taken.file = fileOf(alone);
        return taken;
    } catch (const std::exception &) {
        return std::nullopt;
    }
}
