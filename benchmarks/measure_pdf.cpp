// Measures what a PDF costs, for ./bench pdf. Prints one line: names and figures, separated by blanks.
//
// usage: measure_pdf pages PDF FOLDER       milliseconds a page: in all, and for each step
//        measure_pdf eraser WIDTH HEIGHT    bytes per nanosecond: the eraser's pass, and a plain read
//        measure_pdf memory PDF ENGINE      MiB: a conversion's peak beyond what was there before, its process's, and
//        one raster measure_pdf first-page PDF WIDTH    milliseconds: opening it, and drawing its first page WIDTH
//        pixels wide

#include "pdf/conversion/GrayBitmap.h"
#include "pdf/conversion/PDFConverter.h"
#include "pdf/conversion/PDFDocument.h"
#include "pdf/conversion/PagePng.h"
#include "pdf/conversion/PageRasters.h"
#include "pdf/conversion/TabStaffEraser.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QStringList>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <numeric>
#include <sys/resource.h>

using namespace Qt::StringLiterals;

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

/// Adds the time since the last lap to `sum`.
class Laps final {
public:
    void to(double &sum)
    {
        const Clock::time_point now = Clock::now();
        sum += milliseconds(now - m_last);
        m_last = now;
    }

private:
    Clock::time_point m_last = Clock::now();
};

int fail(const QString &reason)
{
    std::fprintf(stderr, "measure_pdf: %s\n", qPrintable(reason));
    return 1;
}

int pages(const QString &pdf, const QString &folder)
{
    double opening = 0;
    double drawing = 0;
    double erasing = 0;
    double writing = 0;
    std::vector<quint8> storage;
    Laps laps;
    const auto pages = PDFConverter::PageRasters::open(pdf);
    if (!pages)
        return fail(u"cannot read "_s + pdf);
    laps.to(opening);
    for (int index = 0; index < pages->count(); ++index) {
        PDFConverter::Result<std::optional<GrayBitmap>> page = pages->render(index, std::move(storage));
        if (!page)
            return fail(page.failure().message);
        std::optional<GrayBitmap> bitmap = *std::move(page);
        if (!bitmap)
            return fail(u"cannot take out a page of "_s + pdf);
        laps.to(drawing);
        PDFConverter::eraseTabStaves(*bitmap);
        laps.to(erasing);
        if (const auto failure = PDFConverter::writePNG(*bitmap, folder + u"/%1.png"_s.arg(index)))
            return fail(failure->message);
        laps.to(writing);
        storage = std::move(bitmap->pixels);
    }
    const double count = pages->count();
    std::printf("all %.2f opening %.2f drawing %.2f erasing %.2f writing %.2f\n",
        (opening + drawing + erasing + writing) / count, opening / count, drawing / count, erasing / count,
        writing / count);
    return 0;
}

/// The best of several rounds, in bytes per nanosecond.
template <typename Work> double speed(std::size_t bytes, const Work &work)
{
    Clock::duration best = Clock::duration::max();
    for (int round = 0; round < 15; ++round) {
        const Clock::time_point start = Clock::now();
        work();
        best = std::min(best, Clock::now() - start);
    }
    return double(bytes) / double(std::chrono::nanoseconds(best).count());
}

/// Reads every byte, eight at a time, and does as little as can be with them.
quint64 readAll(const std::vector<quint8> &bytes)
{
    const auto *words = reinterpret_cast<const quint64 *>(bytes.data());
    return std::accumulate(words, words + bytes.size() / sizeof(quint64), quint64(0), std::bit_xor<>());
}

int eraser(int width, int height)
{
    // A page without a staff: the pass over the pixels, and nothing to paint.
    GrayBitmap page{ std::vector<quint8>(std::size_t(width) * std::size_t(height), 255), width, height };
    volatile quint64 seen = 0;
    const double read = speed(page.pixels.size(), [&] { seen = readAll(page.pixels); });
    const double profile = speed(page.pixels.size(), [&] { PDFConverter::eraseTabStaves(page); });
    std::printf("eraser %.2f read %.2f\n", profile, read);
    return 0;
}

/// A figure of /proc/self/status, in MiB.
double status(const char *name)
{
    QFile file(u"/proc/self/status"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = file.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith(name))
            return line.mid(qsizetype(qstrlen(name)) + 1).simplified().split(' ').constFirst().toDouble() / 1024;
    }
    return 0;
}

int memory(const QString &pdf, const QString &audiveris)
{
    // The program shows a PDF before it converts it.
    const std::shared_ptr<PDFDocument> shown = PDFDocument::open(pdf);
    if (!shown)
        return fail(u"cannot read "_s + pdf);
    const QSizeF largest = shown->box(0)->media.size() * (600.0 / 72.0);
    const double before = status("VmRSS");
    const auto result = PDFConverter::convert(pdf, audiveris);
    if (!result)
        return fail(result.failure().message);
    // The larger of the two processes that were ended and waited for: the one that drew, and the stand-in.
    rusage children{};
    ::getrusage(RUSAGE_CHILDREN, &children);
    std::printf("peak %.1f process %.1f raster %.1f\n", status("VmHWM") - before, double(children.ru_maxrss) / 1024,
        largest.width() * largest.height() / (1 << 20));
    return 0;
}

int firstPage(const QString &pdf, int width)
{
    Laps laps;
    double opening = 0;
    double drawing = 0;
    const std::shared_ptr<PDFDocument> document = PDFDocument::open(pdf);
    laps.to(opening);
    if (!document)
        return fail(u"cannot read "_s + pdf);
    const QSizeF shape = document->box(0)->crop.size();
    const QImage picture = document->picture(0, QSize(width, int(width * shape.height() / shape.width())));
    laps.to(drawing);
    if (picture.isNull())
        return fail(u"cannot draw "_s + pdf);
    std::printf("opening %.1f drawing %.1f\n", opening, drawing);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    const QGuiApplication application(argc, argv);
    const QStringList arguments = QGuiApplication::arguments();
    if (arguments.size() != 4)
        return fail(u"see the usage in the source"_s);
    const QString &what = arguments[1];
    if (what == "pages"_L1)
        return pages(arguments[2], arguments[3]);
    if (what == "eraser"_L1)
        return eraser(arguments[2].toInt(), arguments[3].toInt());
    if (what == "memory"_L1)
        return memory(arguments[2], arguments[3]);
    if (what == "first-page"_L1)
        return firstPage(arguments[2], arguments[3].toInt());
    return fail(u"unknown measurement "_s + what);
}
