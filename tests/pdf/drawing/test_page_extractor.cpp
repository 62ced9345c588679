#include "pdf/drawing/PageExtractor.h"
#include "tests/support/TestPDFs.h"

#include <QTest>

class TestPageExtractor final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aPageOfALongDocumentCarriesNoMoreThanOneOfAShortOne()
    {
        const QByteArray file = TestPDFs::colored(1000);
        const auto pages = PageExtractor::open(file);
        QVERIFY(pages);
        QCOMPARE(pages->boxes().size(), 1000U);
        const auto page = pages->page(500);
        QVERIFY(page);
        QVERIFY2(page->file.size() < 1500, qPrintable(QString::number(page->file.size())));
        QVERIFY(!page->hasPictures);
    }

    void picturesOnThePage_data()
    {
        QTest::addColumn<QByteArray>("resources");
        QTest::addColumn<bool>("has");
        QTest::newRow("none") << QByteArray() << false;
        QTest::newRow("a picture") << QByteArray("/P 5 0 R") << true;
        QTest::newRow("a form without one") << QByteArray("/F 6 0 R") << false;
        QTest::newRow("one on a form") << QByteArray("/F 7 0 R") << true;
        QTest::newRow("a form on itself") << QByteArray("/F 8 0 R") << false;
    }

    void picturesOnThePage()
    {
        QFETCH(QByteArray, resources);
        const QByteArray form = "<< /Type /XObject /Subtype /Form /BBox [0 0 9 9] /Length 0 /Resources << /XObject << ";
        const QByteArray end = " >> >> >>\nstream\n\nendstream";
        const QByteArray picture = "<< /Type /XObject /Subtype /Image /Width 1 /Height 1 /BitsPerComponent 8 "
                                   "/ColorSpace /DeviceGray /Length 1 >>\nstream\nx\nendstream";
        const QByteArray file
            = TestPDFs::numbered({ "<< /Type /Catalog /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 60 90] /Contents 4 0 R /Resources << /XObject << "
                    + resources + " >> >> >>",
                "<< /Length 0 >>\nstream\n\nendstream", picture, form + end, form + "/P 5 0 R" + end,
                form + "/F 8 0 R" + end });
        const auto pages = PageExtractor::open(file);
        QVERIFY(pages);
        const auto page = pages->page(0);
        QVERIFY(page);
        QTEST(page->hasPictures, "has");
    }
};

QTEST_APPLESS_MAIN(TestPageExtractor)
#include "test_page_extractor.moc"
