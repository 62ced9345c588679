#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PDFPageSidebar.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "tests/support/Report.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"
#include "views/ContentView.h"

#include <QPixmap>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

using namespace Qt::StringLiterals;

namespace {

PDFSheetView *pageGrid(const ShownWindow &w) { return w.window.findChild<PDFSheetView *>(); }

int scrolled(const ShownWindow &w) { return pageGrid(w)->verticalScrollBar()->value(); }

int topOf(const ShownWindow &w, int page)
{
    return std::min(qRound(pageGrid(w)->grid().cell(page).top()), pageGrid(w)->verticalScrollBar()->maximum());
}

/// The colour in the middle of a page, as it is on the screen.
QRgb shown(const ShownWindow &w, int page)
{
    const QPointF middle = pageGrid(w)->grid().cell(page).center() - QPointF(0, scrolled(w));
    return pageGrid(w)->viewport()->grab().toImage().pixel(middle.toPoint());
}

bool hasPicture(const ShownWindow &w, int page) { return shown(w, page) == TestPDFs::colorOf(page); }

QByteArray mixed()
{
    return TestPDFs::file({ {}, { .rotation = "90" }, { .crop = "0 0 595 200" }, { .media = "0 0 200 842" }, {} });
}

} // namespace

class TestPDFSheetView final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theGridFillsTheView_data()
    {
        QTest::addColumn<int>("pages");
        QTest::addColumn<int>("across");
        QTest::addColumn<int>("columns");
        QTest::newRow("two pages, four across") << 2 << 4 << 2;
        QTest::newRow("below one") << 3 << 0 << 1;
        QTest::newRow("two across") << 5 << 2 << 2;
        QTest::newRow("six across") << 20 << 6 << 6;
    }

    void theGridFillsTheView()
    {
        QFETCH(int, pages);
        QFETCH(int, across);
        QFETCH(int, columns);
        ShownWindow w;
        w.controller.pdfPagesAcross = across;
        w.openPDF(TestPDFs::colored(pages));
        QCOMPARE(pageGrid(w)->grid().pageCount(), pages);
        QCOMPARE(pageGrid(w)->grid().columns(), columns);
        QCOMPARE(pageGrid(w)->grid().cellWidth(), (pageGrid(w)->width() - 32 - 14.0 * (columns - 1)) / columns);
    }

    void aViewOf1000HasCellsOf477()
    {
        TestSurroundings world;
        AlphaTabController controller(world.make());
        const auto document = PDFDocument::open(world.file(u"a.pdf"_s, TestPDFs::colored(9)).toLocalFile());
        PDFSheetView view(controller, document, 14, 16, std::make_shared<PageRenderQueue>());
        view.resize(1000, 700);
        view.show();
        QCOMPARE(view.grid().cellWidth(), 477.0);
        QCOMPARE(view.cells().cell(0).renderKey(), u"0-19"_s);
        // The scroll bar stands in the margin.
        QVERIFY(view.verticalScrollBar()->isVisible());
        QVERIFY(view.grid().cell(1).right() <= view.viewport()->width());
    }

    void turnedAndCroppedPagesHaveTheirOwnShape()
    {
        ShownWindow w;
        w.openPDF(mixed());
        const PageGridLayout &grid = pageGrid(w)->grid();
        const double width = grid.cellWidth();
        QCOMPARE(grid.cell(0).height(), width * 842 / 595);
        QCOMPARE(grid.cell(1).height(), width * 595 / 842);
        QCOMPARE(grid.cell(2).height(), width * 200 / 595);
        QCOMPARE(grid.cell(3).height(), width * 842 / 200);
    }

    void pagesComeOnTheScreen()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(4));
        QCOMPARE(shown(w, 0), qRgb(255, 255, 255));
        QTRY_VERIFY(hasPicture(w, 0) && hasPicture(w, 1));
    }

    void nothingFlashesWhileANewPictureIsDrawn()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(4));
        QTRY_VERIFY(hasPicture(w, 0));
        for (const int across : { 1, 3, 2 }) {
            w.controller.pdfPagesAcross = across;
            QVERIFY(hasPicture(w, 0));
        }
        w.window.resize(900, 700);
        QVERIFY(hasPicture(w, 0));
    }

    void oneBandOfWidthsTakesOnePicture()
    {
        ShownWindow w;
        w.controller.pdfPagesAcross = 1;
        w.openPDF(TestPDFs::colored(1));
        QTRY_VERIFY(hasPicture(w, 0));
        const auto picture = [&w] { return pageGrid(w)->cells().cell(0).image().cacheKey(); };
        // To a width in the middle of a band.
        const double width = pageGrid(w)->grid().cellWidth();
        w.window.resize(w.window.width() + 36 - int(std::fmod(width, 24)), w.window.height());
        QCoreApplication::processEvents();
        QTRY_VERIFY(!pageGrid(w)->cells().cell(0).needsImage());
        const qint64 before = picture();
        w.window.resize(w.window.width() + 8, w.window.height());
        QCoreApplication::processEvents();
        QVERIFY(!pageGrid(w)->cells().cell(0).needsImage());
        QCOMPARE(picture(), before);
        w.window.resize(w.window.width() + 24, w.window.height());
        QTRY_VERIFY(picture() != before);
    }

    void theTargetIsScrolledToSmoothlyAndForgotten()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(40));
        w.controller.pdfScrollTarget = 20;
        QVERIFY(!w.controller.pdfScrollTarget.value());
        QVERIFY(scrolled(w) < topOf(w, 20));
        QList<int> passed;
        connect(pageGrid(w)->verticalScrollBar(), &QScrollBar::valueChanged, this,
            [&passed](int value) { passed << value; });
        QTRY_COMPARE(scrolled(w), topOf(w, 20));
        QVERIFY2(passed.size() > 2, "it jumped");
        QVERIFY(std::is_sorted(passed.begin(), passed.end()));
        QTRY_VERIFY(hasPicture(w, 20));
        // The same page again, after the user went elsewhere.
        pageGrid(w)->verticalScrollBar()->setValue(0);
        w.controller.pdfScrollTarget = 20;
        QTRY_COMPARE(scrolled(w), topOf(w, 20));
        // None is no target, and neither is a page that is not there.
        w.controller.pdfScrollTarget = std::nullopt;
        w.controller.pdfScrollTarget = 40;
        w.controller.pdfScrollTarget = -1;
        QVERIFY(!w.controller.pdfScrollTarget.value());
        QTest::qWait(50);
        QCOMPARE(scrolled(w), topOf(w, 20));
    }

    void theUsersHandEndsTheScrolling()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(40));
        w.controller.pdfScrollTarget = 39;
        QTRY_VERIFY(scrolled(w) > 0);
        pageGrid(w)->verticalScrollBar()->setValue(0);
        QTest::qWait(400); // longer than the way would take
        QCOMPARE(scrolled(w), 0);
    }

    void whatIsAtTheTopStaysThere()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(60));
        pageGrid(w)->verticalScrollBar()->setValue(topOf(w, 30));
        for (const int across : { 1, 4, 3, 6, 2 }) {
            w.controller.pdfPagesAcross = across;
            QCOMPARE(scrolled(w), topOf(w, 30));
        }
        for (const int width : { 760, 1500, 1200 }) {
            w.window.resize(width, 800);
            QCoreApplication::processEvents();
            QCOMPARE(scrolled(w), topOf(w, 30));
        }
        // In the middle of a page, its middle stays.
        const auto share = [&w] {
            const QRectF cell = pageGrid(w)->grid().cell(30);
            return (scrolled(w) - cell.top()) / cell.height();
        };
        pageGrid(w)->verticalScrollBar()->setValue(topOf(w, 30) + int(pageGrid(w)->grid().cell(30).height() / 2));
        w.controller.pdfPagesAcross = 1;
        QVERIFY2(std::abs(share() - 0.5) < 0.01, qPrintable(QString::number(share())));
        // The beginning stays the beginning.
        pageGrid(w)->verticalScrollBar()->setValue(0);
        w.controller.pdfPagesAcross = 5;
        QCOMPARE(scrolled(w), 0);
    }

    void theKeysScroll()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(40));
        QVERIFY2(pageGrid(w)->hasFocus(), "the keys work without a click first");
        const auto press = [&w](Qt::Key key) {
            QTest::keyClick(QApplication::focusWidget(), key);
            return scrolled(w);
        };
        const int end = pageGrid(w)->verticalScrollBar()->maximum();
        const int line = press(Qt::Key_Down);
        QVERIFY(line > 0);
        QVERIFY(press(Qt::Key_Up) == 0);
        const int page = press(Qt::Key_PageDown);
        QVERIFY(page > pageGrid(w)->viewport()->height() / 2 && page < pageGrid(w)->viewport()->height());
        QCOMPARE(press(Qt::Key_PageUp), 0);
        QCOMPARE(press(Qt::Key_End), end);
        QCOMPARE(press(Qt::Key_Home), 0);
    }

    void theWheelScrolls()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(40));
        QWidget *viewport = pageGrid(w)->viewport();
        const QPointF at = viewport->rect().center();
        QWheelEvent event(at, viewport->mapToGlobal(at), QPoint(), QPoint(0, -120), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(viewport, &event);
        QVERIFY(scrolled(w) > 0);
    }

    void itGoesWithItsDocument()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(3));
        QPointer<PDFSheetView> first = pageGrid(w);
        QTRY_VERIFY(hasPicture(w, 0));
        w.controller.pdfScrollTarget = 1;
        w.openPDF(TestPDFs::file({ { .drawing = "0 0 1 rg 0 0 999 999 re f" } }));
        QVERIFY(!first);
        QCOMPARE(w.window.findChildren<PDFSheetView *>().size(), 1);
        QCOMPARE(w.window.findChildren<PDFPageSidebar *>().size(), 1);
        QCOMPARE(scrolled(w), 0);
        QTRY_COMPARE(shown(w, 0), qRgb(0, 0, 255));
        report(w.controller.pdfDocument, nullptr);
        QVERIFY(!pageGrid(w) && !w.window.findChild<PDFPageSidebar *>());
    }

    void othersCanBeOpenedWhilePagesAreDrawn()
    {
        ShownWindow w;
        w.controller.handle({ { u"type"_s, u"ready"_s } });
        const QUrl slow = w.world.file(u"slow.pdf"_s, TestPDFs::file(QList<TestPDFs::Page>(30, TestPDFs::slowPage())));
        const QUrl score = w.world.file(u"a.gp"_s);
        for (int i = 0; i < 10; ++i) {
            w.controller.load(slow);
            QTest::qWait(5 * i);
            w.controller.load(score);
            QVERIFY(!pageGrid(w));
        }
        w.controller.load(slow);
        w.openPDF(TestPDFs::colored(2));
        QTRY_VERIFY(hasPicture(w, 0) && hasPicture(w, 1));
        // Whatever was still on its way has had its time to arrive in the wrong place.
        QTest::qWait(200);
        QVERIFY(hasPicture(w, 0) && hasPicture(w, 1));
    }

    void theWindowMayCloseWhilePagesAreDrawn()
    {
        for (int i = 0; i < 5; ++i) {
            ShownWindow w;
            w.openPDF(TestPDFs::file(QList<TestPDFs::Page>(30, TestPDFs::slowPage())));
            QTest::qWait(10 * i);
        }
    }

    void whatItCoversTakesNoKeys()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(3));
        for (const QString &across : { u"2"_s, u"5"_s, u"1"_s }) {
            w.click(across);
            QStringList names;
            for (int i = 0; i < 5; ++i) {
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
                names << accessibleName(QApplication::focusWidget());
            }
            // From the page grid around to it again. The other numbers are reached by the arrows.
            QCOMPARE(
                names, (QStringList{ u"Open"_s, across, u"Convert to Guitar Pro"_s, u"Pages"_s, u"Sheet music"_s }));
        }
        w.control(u"1"_s)->setFocus(Qt::TabFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(w.controller.pdfPagesAcross.value(), 2);
    }

    void itLooksRightInTheDark()
    {
        const QPalette before = QApplication::palette();
        QPalette dark(QColor(0x30, 0x30, 0x30));
        dark.setColor(QPalette::WindowText, Qt::white);
        QApplication::setPalette(dark);
        ShownWindow w;
        w.openPDF(TestPDFs::colored(3));
        QTRY_VERIFY(hasPicture(w, 0));
        const QImage picture = pageGrid(w)->grab().toImage();
        QVERIFY(qGray(picture.pixel(3, 3)) < 60);
        // Behind the scroll bar as well.
        QVERIFY(qGray(picture.pixel(picture.width() - 2, picture.height() - 4)) < 60);
        QApplication::setPalette(before);
        QCoreApplication::processEvents();
        const QImage light = pageGrid(w)->grab().toImage();
        QVERIFY(qGray(light.pixel(3, 3)) > 200);
        QVERIFY(qGray(light.pixel(light.width() - 2, light.height() - 4)) > 200);
        QVERIFY(hasPicture(w, 0));
    }

    void anySizeWillDo_data()
    {
        QTest::addColumn<QSize>("size");
        for (const QSize size : { QSize(760, 520), QSize(1400, 900), QSize(2560, 1440) })
            QTest::addRow("%dx%d", size.width(), size.height()) << size;
    }

    void anySizeWillDo()
    {
        QFETCH(QSize, size);
        ShownWindow w({}, size);
        w.openPDF(mixed());
        for (const int across : { 1, 2, 6 }) {
            w.controller.pdfPagesAcross = across;
            QTRY_VERIFY_WITH_TIMEOUT(!pageGrid(w)->cells().cell(0).image().isNull(), 30'000);
            QCOMPARE(pageGrid(w)->horizontalScrollBar()->maximum(), 0);
        }
        for (const QString &name : { u"Open"_s, u"1"_s, u"6"_s, u"Convert to Guitar Pro"_s }) {
            QWidget *control = w.control(name);
            QVERIFY2(control && control->visibleRegion() == QRegion(control->rect()), qPrintable(name));
        }
    }
};

QTEST_MAIN(TestPDFSheetView)
#include "test_pdf_sheet_view.moc"
