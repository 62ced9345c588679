#include "pdf/conversion/PDFDocument.h"
#include "pdf/process/PDFProcess.h"
#include "pdf/viewing/PageCells.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QTest>
#include <QThread>

using namespace Qt::StringLiterals;

class TestPageCells final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    /// A view that is pulled wider sees the page at once, and then as sharp as it can be.
    void aPictureForTheLastWidthIsBetterThanNone()
    {
        const TestSurroundings world;
        const std::shared_ptr<const PDFDocument> document
            = PDFDocument::open(world.file(u"x.pdf"_s, TestPDFs::colored(1)).toLocalFile());
        QVERIFY(document);
        PageCells cells(std::make_shared<PageRenderQueue>(), document, PageRenderQueue::Urgency::OnScreen, nullptr);
        QList<int> widths;
        connect(&cells, &PageCells::changed, this, [&](int index) { widths << cells.cell(index).image().width(); });
        const auto keep = [&cells](double width) {
            cells.keep({ .width = width, .density = 1, .visible = { 0, 0 }, .nearby = { 0, 0 }, .passing = {} });
        };
        const qint64 requests = PDFProcess::traffic().requests;
        keep(100);
        // Until the first picture is being drawn; it cannot arrive before events are looked at.
        while (PDFProcess::traffic().requests == requests)
            QThread::yieldCurrentThread();
        keep(400);
        QTRY_COMPARE(widths.size(), 2);
        QVERIFY(widths.constFirst() < widths.constLast());
        // The other way round it has one already.
        keep(100);
        QTRY_COMPARE(widths.size(), 3);
    }
};

QTEST_MAIN(TestPageCells)
#include "test_page_cells.moc"
