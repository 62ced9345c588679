// measure_scrolling PDF: opens a PDF in the sheet view of a window of 1400 by 900 and scrolls from its first page to
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

/// One line of the kernel's account of this process, in MiB.
double memory(const QByteArray &line)
{
    QFile status(u"/proc/self/status"_s);
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
            [this] { longest = std::max(longest, since.nsecsElapsed() / 1e6), since.restart(); });
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
    std::printf("opened after            %7.1f ms\n", clock.nsecsElapsed() / 1e6);
    auto *sheet = window.findChild<PDFSheetView *>();
    if (!sheet)
        return 1;
    turnUntil([&] { return !sheet->cells().cell(0).image().isNull(); });
    std::printf("first page after        %7.1f ms\n", clock.nsecsElapsed() / 1e6);

    QScrollBar *bar = sheet->verticalScrollBar();
    {
        Pauses pauses;
        clock.restart();
        turnUntil([&] {
            bar->setValue(int(bar->maximum() * std::min(1.0, double(clock.elapsed()) / scrollTime)));
            return clock.hasExpired(scrollTime);
        });
        std::printf("longest pause           %7.1f ms, scrolling through %d pages in %d s\n", pauses.longest,
            sheet->grid().pageCount(), scrollTime / 1000);
    }
    {
        Pauses pauses;
        for (int jump = 9; jump >= 0; --jump) {
            clock.restart();
            controller.pdfScrollTarget = sheet->grid().pageCount() * jump / 10;
            turnUntil([&] { return clock.hasExpired(600); });
        }
        std::printf("longest pause           %7.1f ms, in ten animated jumps\n", pauses.longest);
    }
    std::printf("memory                  %7.1f MiB before, %.1f after, %.1f at most\n", before, memory("VmRSS:"),
        memory("VmHWM:"));
    return 0;
}
