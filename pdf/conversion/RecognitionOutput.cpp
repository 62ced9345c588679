#include "pdf/conversion/RecognitionOutput.h"

#include <QCoreApplication>
#include <QRegularExpression>

#include <array>

using namespace Qt::StringLiterals;

namespace {

/// In the order in which Audiveris takes them.
constexpr std::array steps{ "LOAD", "BINARY", "SCALE", "GRID", "HEADERS", "STEM_SEEDS", "BEAMS", "LEDGERS", "HEADS",
    "STEMS", "REDUCTION", "CUE_BEAMS", "TEXTS", "MEASURES", "CHORDS", "CURVES", "SYMBOLS", "LINKS", "RHYTHMS", "PAGE" };

QString translated(const char *text) { return QCoreApplication::translate("PDFConverter", text); }

} // namespace

namespace PDFConverter {

QString stepIn(const QByteArray &output)
{
    // As a word of its own in capitals: the same words stand small in other messages.
    static const QRegularExpression word(uR"((?<![A-Z_])[A-Z]+(_[A-Z]+)?(?![A-Z_]))"_s);
    QString last;
    for (QRegularExpressionMatchIterator words = word.globalMatch(QString::fromLatin1(output)); words.hasNext();) {
        const QString candidate = words.next().captured();
        if (numberOfStep(candidate) > 0)
            last = candidate;
    }
    return last;
}

int numberOfStep(const QString &step)
{
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (step == QLatin1StringView(steps[i]))
            return int(i) + 1;
    }
    return 0;
}

int stepCount() { return int(steps.size()); }

QString adviceFor(const QByteArray &output)
{
    if (output.contains("OutOfMemoryError")) {
        return translated("It ran out of memory. Close other programs, or convert fewer pages at a time.");
    }
    if (output.contains("Too large image")) {
        return translated("A page is too large for it. Pages of A4 or letter paper are fine; of scans, it may be the "
                          "resolution that the PDF gives them.");
    }
    if (output.contains("TimeoutException")) {
        return translated("A step took longer than Audiveris allows itself. Fewer pages at a time, or a cleaner scan, "
                          "may help.");
    }
    return {};
}

QString tooLargePage(int number, qint64 pixels)
{
    constexpr double million = 1e6;
    return translated(
        "Page %1 is too large for it: %2 million pixels, where it takes %3 million. Pages of A4 or letter "
        "paper are fine; of scans, it may be the resolution that the PDF gives them.")
        .arg(QString::number(number), QString::number(double(pixels) / million, 'f', 1),
            QString::number(mostPixels / qint64(million)));
}

} // namespace PDFConverter
