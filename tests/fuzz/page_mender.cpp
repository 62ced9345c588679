// Pages drawn of lines and patches: the eraser of tablature, and what mends the page behind it.
#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PageMender.h"
#include "pdf/conversion/TabStaffEraser.h"
#include "tests/fuzz/Expect.h"

#include <algorithm>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>

namespace {

void fill(GrayBitmap &page, int left, int top, int width, int height, quint8 gray)
{
    const int right = std::min(page.width, left + width);
    const int bottom = std::min(page.height, top + height);
    for (int y = top; y < bottom && left < right; ++y)
        std::memset(
            page.pixels.data() + std::size_t(y) * std::size_t(page.width) + left, gray, std::size_t(right - left));
}

/// Staves, strokes and patches, as the input says.
void draw(GrayBitmap &page, FuzzedDataProvider &input)
{
    while (input.remaining_bytes() > 0) {
        const int kind = input.ConsumeIntegralInRange(0, 3);
        const int x = input.ConsumeIntegralInRange(0, page.width - 1);
        const int y = input.ConsumeIntegralInRange(0, page.height - 1);
        const int a = input.ConsumeIntegralInRange(1, 60);
        const int b = input.ConsumeIntegralInRange(1, 60);
        if (kind == 0) {
            const int lines = input.ConsumeIntegralInRange(1, 8);
            for (int line = 0; line < lines; ++line)
                fill(page, x, y + line * a, page.width, 1 + b / 15, 0);
        } else if (kind == 1) {
            fill(page, x, y, 1 + a / 15, b * 20, 0);
        } else if (kind == 2) {
            fill(page, x, y, a, b, 0);
        } else {
            fill(page, x, y, a, b, input.ConsumeIntegral<quint8>());
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    GrayBitmap rendering;
    rendering.width = input.ConsumeIntegralInRange(1, 700);
    rendering.height = input.ConsumeIntegralInRange(1, 900);
    rendering.pixels.assign(std::size_t(rendering.width) * std::size_t(rendering.height), 255);
    draw(rendering, input);
    GrayBitmap page = rendering;
    if (PDFConverter::eraseTabStaves(page))
        PDFConverter::mendPage(rendering, page);
    else
        expect(page.pixels == rendering.pixels, "a page without tablature stays as it was");
    expect(page.pixels.size() == rendering.pixels.size(), "the page keeps its size");
    for (std::size_t i = 0; i < page.pixels.size(); ++i)
        expect(page.pixels[i] == rendering.pixels[i] || page.pixels[i] == 255, "a pixel is as rendered, or white");
    return 0;
}
