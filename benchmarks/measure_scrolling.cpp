// measure_scrolling PDF: opens a PDF in the page grid of a window of 1400 by 900 and scrolls from its first page to
// its last one within ten seconds, then back in jumps. Prints the time to the first page, the longest time in which the
// window did not answer, and memory.
#include "controller/AlphaTabController.h"
#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "tests/support/TestSurroundings.h"
#include "views/ContentView.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QMainWindow>
#include <QScrollBar>
#include <QTimer>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

constexpr int scrollTime = 10'000; // milliseconds
constexpr int openingTimeoutMs = 20'000;

/// One line of the kernel's account of a process, in MiB.
double memory(const QByteArray &line, const QString &process = u"self"_s)
{
    QFile status(u"/proc/"_s + process + u"/status"_s);
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QByteArray all = status.readAll();
    const qsizetype at = all.indexOf(line);
    return at < 0 ? 0 : all.mid(at + line.size()).simplified().split(' ').constFirst().toDouble() / 1024;
}

/// Goes round with the event loop and remembers the longest round.
struct Pauses {
    Pauses()
    {
        since.start();
        QObject::connect(&timer, &QTimer::timeout,
            [this] { longest = std::max(longest, double(since.nsecsElapsed()) / 1e6), since.restart(); });
        timer.start(0);
    }
    QElapsedTimer since;
    QTimer timer;
    double longest = 0;
};

void turnUntil(const std::function<bool()> &done)
{
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 20);
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    if (argc != 2)
        return 2;
    TestSurroundings world;
    AlphaTabController controller(world.make());
    QMainWindow window;
    window.setCentralWidget(new ContentView(controller));
    window.resize(1400, 900);
    window.show();
    QElapsedTimer settled;
    settled.start();
    turnUntil([&] { return settled.hasExpired(500); });
    const double before = memory("VmRSS:");

    QElapsedTimer clock;
    clock.start();
    controller.load(QUrl::fromLocalFile(QString::fromLocal8Bit(argv[1])));
    const PDFSheetView *pages = nullptr;
    turnUntil([&] { return (pages = window.findChild<PDFSheetView *>()) || clock.hasExpired(openingTimeoutMs); });
    if (!pages)
        return 1;
    std::printf("opened after            %7.1f ms\n", double(clock.nsecsElapsed()) / 1e6);
    turnUntil([&] { return !pages->cells().cell(0).image().isNull(); });
    std::printf("first page after        %7.1f ms\n", double(clock.nsecsElapsed()) / 1e6);

    QScrollBar *bar = pages->verticalScrollBar();
    {
        Pauses pauses;
        clock.restart();
        turnUntil([&] {
            bar->setValue(int(bar->maximum() * std::min(1.0, double(clock.elapsed()) / scrollTime)));
            return clock.hasExpired(scrollTime);
        });
        std::printf("longest pause           %7.1f ms, scrolling through %d pages in %d s\n", pauses.longest,
            pages->grid().pageCount(), scrollTime / 1000);
    }
    {
        Pauses pauses;
        for (int jump = 9; jump >= 0; --jump) {
            clock.restart();
            controller.pdfScrollTarget = pages->grid().pageCount() * jump / 10;
            turnUntil([&] { return clock.hasExpired(600); });
        }
        std::printf("longest pause           %7.1f ms, in ten animated jumps\n", pauses.longest);
    }
    std::printf("memory                  %7.1f MiB before, %.1f after, %.1f at most\n", before, memory("VmRSS:"),
        memory("VmHWM:"));
    const QString process = QString::number(controller.pdfDocument.value()->processId());
    std::printf("its process             %7.1f MiB after, %.1f at most\n", memory("VmRSS:", process),
        memory("VmHWM:", process));
    const PDFProcess::Traffic traffic = PDFProcess::traffic();
    std::printf("traffic                 %lld requests, %.1f MiB of pictures\n", traffic.requests,
        double(traffic.bytes) / (1 << 20));
    return 0;
}
