#include "pdf/drawing/PageBoxes.h"

#include <qpdf/QPDF.hh>

#include <set>
#include <utility>

namespace {

/// What a page without any box is taken to be, as the drawing library does: US letter.
const QRectF letter(0, 0, 612, 792);

std::optional<QRectF> rectangle(QPDFObjectHandle object)
{
    if (!object.isInitialized() || !object.isRectangle())
        return std::nullopt;
    const QPDFObjectHandle::Rectangle box = object.getArrayAsRectangle();
    // The two corners may come in either order.
    return QRectF(QPointF(box.llx, box.lly), QPointF(box.urx, box.ury)).normalized();
}

/// What a page takes from its ancestors in the page tree where it says nothing itself.
struct Inherited {
    QPDFObjectHandle media;
    QPDFObjectHandle crop;
    QPDFObjectHandle rotation;

    void overrideFrom(QPDFObjectHandle &node)
    {
        for (const auto &[key, value] :
            { std::pair("/MediaBox", &media), { "/CropBox", &crop }, { "/Rotate", &rotation } }) {
            if (node.hasKey(key))
                *value = node.getKey(key);
        }
    }
};

int degrees(QPDFObjectHandle rotation)
{
    if (!rotation.isInitialized() || !rotation.isInteger())
        return 0;
    const int quarters = int(rotation.getIntValue() / 90 % 4);
    return 90 * ((quarters + 4) % 4);
}

PageBox boxOf(const Inherited &values)
{
    PageBox box;
    box.media = rectangle(values.media).value_or(letter);
    if (box.media.isEmpty())
        box.media = letter;
    const QRectF crop = rectangle(values.crop).value_or(QRectF());
    box.crop = crop.isEmpty() ? box.media : crop & box.media;
    box.rotation = degrees(values.rotation);
    return box;
}

/// Walks the page tree, without recursion.
std::vector<PageBox> walk(QPDFObjectHandle pages, bool *circular)
{
    struct Node {
        QPDFObjectHandle object;
        Inherited values;
        int depth;
    };
    std::vector<PageBox> boxes;
    std::vector<Node> waiting{ { pages, {}, 0 } };
    std::set<QPDFObjGen> visited;
    while (!waiting.empty()) {
        Node node = std::move(waiting.back());
        waiting.pop_back();
        if (node.depth > PageBoxes::deepest)
            return {};
        if (!node.object.isDictionary())
            continue;
        node.values.overrideFrom(node.object);
        if (!node.object.hasKey("/Kids")) {
            boxes.push_back(boxOf(node.values));
            continue;
        }
        if (node.object.isIndirect() && !visited.insert(node.object.getObjGen()).second) {
            if (circular)
                *circular = true;
            continue;
        }
        QPDFObjectHandle kids = node.object.getKey("/Kids");
        for (int i = kids.isArray() ? kids.getArrayNItems() : 0; i-- > 0;)
            waiting.push_back({ kids.getArrayItem(i), node.values, node.depth + 1 });
    }
    return boxes;
}

} // namespace

namespace PageBoxes {

std::optional<std::vector<PageBox>> read(const QByteArray &file, bool *circular)
{
    try {
        QPDF document;
        document.setSuppressWarnings(true);
        document.processMemoryFile("the PDF", file.constData(), std::size_t(file.size()));
        return read(document, circular);
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

std::optional<std::vector<PageBox>> read(QPDF &document, bool *circular)
{
    try {
        return walk(document.getRoot().getKey("/Pages"), circular);
    } catch (const std::exception &) {
        return std::nullopt;
    }
}

} // namespace PageBoxes
