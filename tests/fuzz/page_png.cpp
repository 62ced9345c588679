// Page images: what is written is read back by another library.
#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PagePng.h"
#include "tests/fuzz/Expect.h"

#include <QImage>
#include <QTemporaryDir>

#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>

using namespace Qt::StringLiterals;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QTemporaryDir folder;
    FuzzedDataProvider input(data, size);
    GrayBitmap page;
    page.width = input.ConsumeIntegralInRange(1, 3000);
    page.height = input.ConsumeIntegralInRange(1, 600);
    page.pixels.assign(std::size_t(page.width) * std::size_t(page.height), 255);
    // Stretches of one gray, or of what the input holds.
    for (std::size_t place = 0; place < page.pixels.size() && input.remaining_bytes() > 0;) {
        const auto length
            = std::min<std::size_t>(input.ConsumeIntegral<std::uint16_t>() + 1U, page.pixels.size() - place);
        if (input.ConsumeBool())
            std::memset(page.pixels.data() + place, input.ConsumeIntegral<std::uint8_t>(), length);
        else
            input.ConsumeData(page.pixels.data() + place, length);
        place += length;
    }
    const QString path = folder.filePath(u"page.png"_s);
    expect(!PDFConverter::writePNG(page, path), "the page is written");
    const QImage read(path, "PNG");
    expect(read.format() == QImage::Format_Grayscale8 && read.width() == page.width && read.height() == page.height,
        "the file is a gray picture of that size");
    for (int y = 0; y < page.height; ++y) {
        const auto *row = page.pixels.data() + std::size_t(y) * std::size_t(page.width);
        expect(std::memcmp(read.constScanLine(y), row, std::size_t(page.width)) == 0, "the pixels are the page's");
    }
    return 0;
}
