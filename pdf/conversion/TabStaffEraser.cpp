#include "pdf/conversion/TabStaffEraser.h"

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/Staves.h"

#include <algorithm>

namespace {

/// The margin is wider below, where the sixth line, fret digits and rhythm marks are.
void erase(const PDFConverter::Staff &staff, GrayBitmap &bitmap)
{
    const int from = std::max(0, staff.top() - 2 * staff.spacing());
    const int to = std::min(bitmap.height, staff.bottom() + 3 * staff.spacing());
    const auto row = [&bitmap](int y) { return bitmap.pixels.begin() + std::ptrdiff_t(y) * bitmap.width; };
    std::fill(row(from), row(to), quint8(255));
}

} // namespace

namespace PDFConverter {

bool eraseTabStaves(GrayBitmap &bitmap)
{
    const std::vector<Staff> staves = findStaves(findStaffLines(bitmap));
    const std::optional<TablatureTest> isTablature = TablatureTest::of(staves);
    if (!isTablature)
        return false;
    for (const Staff &staff : staves) {
        if ((*isTablature)(staff))
            erase(staff, bitmap);
    }
    return true;
}

} // namespace PDFConverter
