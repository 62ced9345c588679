// PDFs as libqpdf reads them, and their boxes as the window takes them from the process that did.
#include "pdf/drawing/PageBoxes.h"
#include "pdf/process/PDFProtocol.h"
#include "pdf/viewing/PageGridLayout.h"
#include "tests/fuzz/Expect.h"

#include <QtNumeric>

#include <algorithm>
#include <cstring>

namespace {

/// The window's way from a box to a place, as PDFPageCell has it.
double aspectOf(const PageBox &box)
{
    if (box.crop.width() <= 0 || box.crop.height() <= 0)
        return 1;
    const double aspect = std::clamp(box.crop.width() / box.crop.height(), 0.001, 1000.0);
    return box.rotation % 180 == 0 ? aspect : 1 / aspect;
}

void layOut(const std::vector<PageBox> &boxes)
{
    std::vector<double> aspects;
    for (const PageBox &box : boxes) {
        const auto arrived = PDFProtocol::unpacked(PDFProtocol::packed(box));
        expect(arrived.has_value(), "what is read can be sent");
        aspects.push_back(aspectOf(*arrived));
    }
    const PageGridLayout layout(aspects, { .width = 900, .pagesAcross = 3, .spacing = 24, .margin = 24 });
    expect(qIsFinite(layout.height()), "the pages have a height");
}

/// A process in a stranger's hands sends what it likes.
void receive(const QByteArray &bytes)
{
    PDFProtocol::Box box{};
    std::memcpy(&box, bytes.constData(), std::min(sizeof box, std::size_t(bytes.size())));
    if (const auto arrived = PDFProtocol::unpacked(box))
        layOut({ *arrived });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray bytes = bytesOf(data, size);
    bool circular = false;
    if (const auto boxes = PageBoxes::read(bytes, &circular))
        layOut(*boxes);
    receive(bytes);
    return 0;
}
