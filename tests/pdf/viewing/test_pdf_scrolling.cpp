#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "pdf/viewing/PageList.h"
#include "pdf/viewing/PageRenderQueue.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"

#include <QElapsedTimer>
#include <QScrollBar>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

PDFSheetView *pageGrid(const ShownWindow &w) { return w.window.findChild<PDFSheetView *>(); }

/// The longest time that the event loop did not come round.
class GapWatch final : public QObject {
public:
    GapWatch()
    {
        m_since.start();
        connect(&m_timer, &QTimer::timeout, this, [this] { longest = std::max(longest, m_since.restart()); });
        m_timer.start(0);
    }

    qint64 longest = 0; // milliseconds

private:
    QElapsedTimer m_since;
    QTimer m_timer;
};

} // namespace

class TestPDFScrolling final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aThousandPagesAreNoThousandWidgets()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(1));
        const qsizetype widgets = w.window.findChildren<QWidget *>().size();
        w.openPDF(TestPDFs::colored(1000));
        QTRY_COMPARE(w.window.findChildren<QWidget *>().size(), widgets);
        QCOMPARE(pageGrid(w)->grid().pageCount(), 1000);
    }

    void pagesAreTurnedWholeAndByHalves()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(12));
        w.controller.pdfPagesAcross = 1;
        const QScrollBar *bar = pageGrid(w)->verticalScrollBar();
        w.controller.pdfTurn = 1;
        QCOMPARE(bar->value(), bar->pageStep());
        w.controller.pdfTurn = -1;
        QCOMPARE(bar->value(), 0);
        w.controller.pdfHalfTurns = true;
        const QRectF second = pageGrid(w)->grid().cell(1);
        for (int i = 0; i < 20 && bar->value() < qRound(second.top()); ++i)
            w.controller.pdfTurn = 1;
        QCOMPARE(bar->value(), qRound(second.top()));
        w.controller.pdfTurn = 1;
        const int middle = qRound(second.center().y());
        QVERIFY(bar->value() == middle || bar->value() == qRound(second.top()) + bar->pageStep());
    }

    void memoryIsBoundedWhateverIsScrolled()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(1000));
        QScrollBar *bar = pageGrid(w)->verticalScrollBar();
        qsizetype most = 0;
        int cells = 0;
        const int steps = 400;
        for (int i = 0; i <= steps; ++i) {
            bar->setValue(int(qint64(bar->maximum()) * i / steps));
            QCoreApplication::processEvents();
            most = std::max(most, pageGrid(w)->cells().memory());
            cells = std::max(cells, pageGrid(w)->cells().count());
        }
        QTRY_VERIFY(pageGrid(w) && !pageGrid(w)->cells().cell(999).image().isNull());
        QVERIFY2(most < qsizetype(192) << 20, qPrintable(QString::number(most)));
        QVERIFY2(cells < 40, qPrintable(QString::number(cells)));
        QVERIFY(pageGrid(w)->cells().cell(0).image().isNull());
    }

    void onlyWhatIsLookedAtIsDrawn()
    {
        TestSurroundings world;
        AlphaTabController controller(world.make());
        const auto queue = std::make_shared<PageRenderQueue>();
        const auto document = PDFDocument::open(world.file(u"a.pdf"_s, TestPDFs::colored(1000)).toLocalFile());
        PDFSheetView view(controller, document, 14, 16, queue);
        view.resize(800, 600);
        view.show();
        QScrollBar *bar = view.verticalScrollBar();
        for (int value = 0; value < bar->maximum(); value += 300)
            bar->setValue(value); // as fast as a hand at the scroll bar: no page has the time to arrive
        bar->setValue(bar->maximum());
        QTRY_VERIFY(!view.cells().cell(999).image().isNull());
        QVERIFY2(queue->drawnCount() < 20, qPrintable(QString::number(queue->drawnCount())));
        // Far away goes there without what lies between.
        const int before = queue->drawnCount();
        controller.pdfScrollTarget = 0;
        QTRY_VERIFY(bar->value() == 16 && !view.cells().cell(0).image().isNull());
        QVERIFY2(queue->drawnCount() - before < 20, qPrintable(QString::number(queue->drawnCount() - before)));
    }

    void visiblePagesComeBeforeTheirNeighbours()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(1000));
        const PageGridLayout::Range visible = pageGrid(w)->grid().pagesBetween(0, pageGrid(w)->viewport()->height());
        QList<int> order;
        connect(&pageGrid(w)->cells(), &PageCells::changed, this, [&order](int page) { order << page; });
        QTRY_VERIFY(order.contains(visible.last + 1));
        QVERIFY(order.indexOf(visible.first) < order.indexOf(visible.last));
        QVERIFY(order.indexOf(visible.last) < order.indexOf(visible.last + 1));
    }

    void theWindowIsNeverHeldUp()
    {
        ShownWindow w;
        // Each of these keeps the drawing library busy for far longer than the bound below.
        w.openPDF(TestPDFs::file(QList<TestPDFs::Page>(200, TestPDFs::slowPage())));
        QTRY_VERIFY(pageGrid(w) && !pageGrid(w)->cells().cell(0).image().isNull());
        QElapsedTimer page;
        page.start();
        w.controller.pdfDocument.value()->picture(0, QSize(954, 1350));
        const qint64 onePage = page.elapsed();
        QVERIFY2(onePage >= 20, "the page is no work here");
        GapWatch watch;
        QScrollBar *bar = pageGrid(w)->verticalScrollBar();
        int moves = 0;
        QTimer mover;
        connect(&mover, &QTimer::timeout, this, [&] {
            bar->setValue(bar->value() + 200);
            ++moves;
        });
        mover.start(16);
        QTRY_VERIFY_WITH_TIMEOUT(moves >= 60, 30000);
        mover.stop();
        QVERIFY2(watch.longest < 250, qPrintable(u"%1 ms; a page takes %2 ms"_s.arg(watch.longest).arg(onePage)));
    }

    void openingALongDocumentIsQuick()
    {
        ShownWindow w;
        const QUrl url = w.world.file(u"long.pdf"_s, TestPDFs::colored(1000));
        QElapsedTimer timer;
        timer.start();
        w.controller.load(url);
        QTRY_VERIFY(pageGrid(w) && !pageGrid(w)->cells().cell(0).image().isNull());
        // Some tens of milliseconds in a release build; this one may be slow and share the machine.
        QVERIFY2(timer.elapsed() < 2000, qPrintable(QString::number(timer.elapsed())));
    }
};

QTEST_MAIN(TestPDFScrolling)
#include "test_pdf_scrolling.moc"
