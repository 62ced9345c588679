// What Audiveris writes while it runs, in pieces of any length.
#include "pdf/conversion/OutputTail.h"
#include "pdf/conversion/RecognitionOutput.h"
#include "tests/fuzz/Expect.h"

#include <fuzzer/FuzzedDataProvider.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    QByteArray whole;
    OutputTail pieces;
    while (input.remaining_bytes() > 0) {
        const std::vector<char> piece = input.ConsumeBytes<char>(input.ConsumeIntegral<std::uint8_t>());
        const QByteArray bytes(piece.data(), qsizetype(piece.size()));
        pieces.add(bytes);
        whole += bytes;
        const QString step = PDFConverter::stepIn(bytes);
        expect(step.isEmpty() || PDFConverter::numberOfStep(step) > 0, "what is named is a step");
    }
    OutputTail atOnce;
    atOnce.add(whole);
    expect(pieces.text() == atOnce.text(), "where the pieces end makes no difference");
    expect(atOnce.text().count(u'\n') < OutputTail::mostLines, "a few lines are kept");
    PDFConverter::adviceFor(whole);
    return 0;
}
