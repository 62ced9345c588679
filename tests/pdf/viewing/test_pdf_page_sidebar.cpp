#include "pdf/viewing/PDFPageSidebar.h"
#include "pdf/viewing/PDFSheetView.h"
#include "pdf/viewing/PageCells.h"
#include "pdf/viewing/PageList.h"
#include "tests/support/Report.h"
#include "tests/support/TestPDFs.h"
#include "tests/views/ShownWindow.h"

#include <QAccessible>
#include <QPixmap>
#include <QScrollBar>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

PageList *list(const ShownWindow &w) { return w.window.findChild<PageList *>(); }
PDFSheetView *pageGrid(const ShownWindow &w) { return w.window.findChild<PDFSheetView *>(); }

void click(const ShownWindow &w, int page, QPoint within)
{
    QTest::mouseClick(list(w)->viewport(), Qt::LeftButton, {}, list(w)->rowOf(page).topLeft() + within);
}

bool isAt(const ShownWindow &w, int page)
{
    const QScrollBar *bar = pageGrid(w)->verticalScrollBar();
    return bar->value() == std::min(qRound(pageGrid(w)->grid().cell(page).top()), bar->maximum());
}

QAccessibleInterface *seen(const ShownWindow &w) { return QAccessible::queryAccessibleInterface(list(w)); }

} // namespace

class TestPDFPageSidebar final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theThirdPageTwice()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(12));
        QVERIFY(w.label(u"Pages"_s));
        click(w, 2, QPoint(10, 10));
        QTRY_VERIFY(isAt(w, 2));
        pageGrid(w)->verticalScrollBar()->setValue(0);
        click(w, 2, QPoint(10, 10));
        QTRY_VERIFY(isAt(w, 2));
        QVERIFY(!w.controller.pdfScrollTarget.value());
    }

    void theWholeRowCanBeClicked()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(12));
        QList<int> chosen;
        connect(list(w), &PageList::chosen, this, [&chosen](int page) { chosen << page; });
        const QRect row = list(w)->rowOf(4);
        QVERIFY(row.width() > list(w)->width() - 30);
        for (const QPoint at : { QPoint(1, 1), QPoint(row.width() - 2, 1), QPoint(row.width() / 2, row.height() - 2) })
            click(w, 4, at);
        QCOMPARE(chosen, (QList<int>{ 4, 4, 4 }));
        // A press that is taken elsewhere is none.
        QTest::mousePress(list(w)->viewport(), Qt::LeftButton, {}, row.center());
        QTest::mouseRelease(list(w)->viewport(), Qt::LeftButton, {}, list(w)->rowOf(2).center());
        QTest::mouseClick(list(w)->viewport(), Qt::RightButton, {}, row.center());
        QCOMPARE(chosen.size(), 3);
    }

    void thumbnailsAre108PixelsWide()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::file({ {}, { .rotation = "90" }, { .media = "0 0 9000 90" } }));
        QTRY_VERIFY(!list(w)->cells().cell(1).image().isNull());
        QCOMPARE(list(w)->cells().cell(0).image().size(), QSize(108, qRound(108 * 842 / 595.0)));
        QCOMPARE(list(w)->cells().cell(1).image().size(), QSize(108, qRound(108 * 595 / 842.0)));
        QCOMPARE(list(w)->cells().cell(0).renderKey(), u"0-2"_s);
        QVERIFY2(list(w)->rowOf(2).height() >= list(w)->fontMetrics().height(), "a flat page leaves room for its name");
    }

    void theKeysWalkTheRows()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(100));
        QList<int> chosen;
        connect(list(w), &PageList::chosen, this, [&chosen](int page) { chosen << page; });
        list(w)->setFocus(Qt::TabFocusReason);
        const auto press = [&w](Qt::Key key) {
            QTest::keyClick(list(w), key);
            const QRect row = list(w)->rowOf(list(w)->current());
            return list(w)->viewport()->rect().contains(row) ? list(w)->current() : -1; // -1: not in view
        };
        QCOMPARE(press(Qt::Key_Down), 1);
        QCOMPARE(press(Qt::Key_Up), 0);
        QCOMPARE(press(Qt::Key_Up), 0);
        QVERIFY(press(Qt::Key_PageDown) > 2);
        QCOMPARE(press(Qt::Key_PageUp), 0);
        QCOMPARE(press(Qt::Key_End), 99);
        QVERIFY(chosen.isEmpty());
        press(Qt::Key_Return);
        press(Qt::Key_Enter);
        press(Qt::Key_Space);
        QCOMPARE(chosen, (QList<int>{ 99, 99, 99 }));
        QTRY_VERIFY(isAt(w, 99));
        QCOMPARE(press(Qt::Key_Home), 0);
        // Who scrolled away with the wheel starts from what is in view.
        pageGrid(w)->setFocus();
        list(w)->verticalScrollBar()->setValue(list(w)->verticalScrollBar()->maximum() / 2);
        list(w)->setFocus(Qt::TabFocusReason);
        QVERIFY(std::abs(list(w)->current() - 50) < 10);
    }

    void screenReadersFindAButtonPerPage()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(1000));
        QAccessibleInterface *pages = seen(w);
        QCOMPARE(pages->role(), QAccessible::List);
        QCOMPARE(pages->text(QAccessible::Name), u"Pages"_s);
        QCOMPARE(pages->childCount(), 1000);
        QCOMPARE(pages->child(1000), nullptr);
        QAccessibleInterface *row = pages->child(2);
        QCOMPARE(row->role(), QAccessible::Button);
        QCOMPARE(row->text(QAccessible::Name), u"Page 3"_s);
        QCOMPARE(row->parent(), pages);
        QCOMPARE(pages->indexOfChild(row), 2);
        QCOMPARE(pages->child(2), row);
        QVERIFY(!row->state().offscreen && row->state().focusable);
        QVERIFY(pages->child(999)->state().offscreen);
        const QRect place = row->rect();
        QVERIFY(pages->rect().contains(place));
        QCOMPARE(pages->childAt(place.center().x(), place.center().y()), row);
        QCOMPARE(list(w)->pageAt(list(w)->viewport()->mapFromGlobal(place.center())), 2);

        row->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_VERIFY(isAt(w, 2));
        list(w)->setFocus(Qt::TabFocusReason);
        QCOMPARE(pages->focusChild(), row);
        QVERIFY(row->state().focused);
    }

    void rowsOfAClosedDocumentAreInvalid()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(3));
        const QAccessible::Id id = QAccessible::uniqueId(seen(w)->child(1));
        report(w.controller.pdfDocument, nullptr);
        QVERIFY(!QAccessible::accessibleInterface(id));
    }

    void aLongListDrawsWhatIsNear()
    {
        ShownWindow w;
        w.openPDF(TestPDFs::colored(1000));
        QTRY_VERIFY(!list(w)->cells().cell(0).image().isNull());
        list(w)->verticalScrollBar()->setValue(list(w)->verticalScrollBar()->maximum());
        QTRY_VERIFY(!list(w)->cells().cell(999).image().isNull());
        QVERIFY(list(w)->cells().cell(0).image().isNull());
        QVERIFY(list(w)->cells().count() < 60);
    }
};

QTEST_MAIN(TestPDFPageSidebar)
#include "test_pdf_page_sidebar.moc"
