// Audiveris's results, one page or several of them, separated by a byte that no XML holds.
#include "pdf/conversion/MusicXmlAssembly.h"
#include "tests/fuzz/Expect.h"

#include <QList>

#include <iterator>

using PDFConverter::MusicXmlDocument;

namespace {

constexpr char separator = '\x1e';

std::ptrdiff_t measuresIn(const MusicXmlDocument &document)
{
    const auto measures = document.tree().document_element().child("part").children("measure");
    return std::distance(measures.begin(), measures.end());
}

void expectFixedPoint(const MusicXmlDocument &document)
{
    const QByteArray written = document.serialise();
    const auto again = MusicXmlDocument::parse(written);
    expect(bool(again), "what was written can be read");
    expect(again->serialise() == written, "what is read again is written as it was");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::vector<MusicXmlDocument> pages;
    std::ptrdiff_t measures = 0;
    for (const QByteArray &page : bytesOf(data, size).split(separator)) {
        auto document = MusicXmlDocument::parse(page);
        if (!document)
            continue;
        expectFixedPoint(*document);
        measures += measuresIn(*document);
        pages.push_back(*std::move(document));
    }
    if (pages.empty())
        return 0;
    auto merged = PDFConverter::merge(std::move(pages));
    if (!merged)
        return 0;
    expect(measuresIn(*merged) == measures, "each measure is in the merged score");
    PDFConverter::hasPitchedNote(*merged);
    PDFConverter::stripOctaveShifts(*merged);
    merged->serialise();
    return 0;
}
