#include "pdf/conversion/PDFDocument.h"
#include "pdf/viewing/PDFPageCell.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QPainter>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

std::shared_ptr<const PDFDocument> open(const QByteArray &bytes)
{
    const TestSurroundings world;
    std::shared_ptr<const PDFDocument> document = PDFDocument::open(world.file(u"x.pdf"_s, bytes).toLocalFile());
    if (!document)
        qFatal("the document does not open");
    return document;
}

QImage painted(const PDFPageCell &cell, const QRectF &place, bool dark = false)
{
    QImage canvas(200, 200, QImage::Format_RGB32);
    canvas.fill(QColor(200, 200, 200));
    QPainter painter(&canvas);
    cell.paint(painter, place, dark);
    return canvas;
}

} // namespace

class TestPDFPageCell final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void darkPaperTurnsInkLight()
    {
        QImage page(100, 100, QImage::Format_RGB32);
        page.fill(Qt::white);
        page.setPixelColor(50, 50, Qt::black);
        PDFPageCell cell(open(TestPDFs::colored(1)), 0, 100);
        cell.setPicture(cell.renderKey(), PagePicture(page, 100));
        const QImage light = painted(cell, { 20, 20, 100, 100 });
        QCOMPARE(light.pixelColor(30, 30), QColor(Qt::white));
        QCOMPARE(light.pixelColor(70, 70), QColor(Qt::black));
        const QImage dark = painted(cell, { 20, 20, 100, 100 }, true);
        QVERIFY(dark.pixelColor(30, 30).lightness() < 48 && dark.pixelColor(30, 30).lightness() > 16);
        QCOMPARE(dark.pixelColor(70, 70), QColor(Qt::white));
        // Nothing else turns dark.
        QCOMPARE(dark.pixelColor(190, 190), light.pixelColor(190, 190));
    }

    void aspects_data()
    {
        QTest::addColumn<QByteArray>("media");
        QTest::addColumn<QByteArray>("crop");
        QTest::addColumn<QByteArray>("rotation");
        QTest::addColumn<double>("aspect");
        const QByteArray none;
        const QByteArray media = "0 0 600 800";
        QTest::newRow("media box") << media << none << none << 600 / 800.0;
        QTest::newRow("crop box") << media << QByteArray("100 100 500 200") << none << 4.0;
        QTest::newRow("a quarter turn") << media << none << QByteArray("90") << 800 / 600.0;
        QTest::newRow("half a turn") << media << none << QByteArray("180") << 600 / 800.0;
        QTest::newRow("three quarters") << media << none << QByteArray("270") << 800 / 600.0;
        QTest::newRow("backwards") << media << none << QByteArray("-90") << 800 / 600.0;
        QTest::newRow("more than once around") << media << none << QByteArray("450") << 800 / 600.0;
        QTest::newRow("cropped and turned") << media << QByteArray("0 0 100 400") << QByteArray("90") << 4.0;
        QTest::newRow("crop beyond the media box") << media << QByteArray("-50 -50 9000 400") << none << 600 / 400.0;
        QTest::newRow("corners the other way") << QByteArray("600 800 0 0") << none << none << 600 / 800.0;
        QTest::newRow("crop beside the media box")
            << media << QByteArray("700 0 900 800") << none << 0.7072135785007072;
        QTest::newRow("a strip without end") << QByteArray("0 0 0.0001 1000000000") << none << none << 0.001;
        QTest::newRow("a turned strip without end")
            << QByteArray("0 0 0.0001 1000000000") << none << QByteArray("90") << 1000.0;
        QTest::newRow("a wide strip without end") << QByteArray("0 0 1000000000 0.0001") << none << none << 1000.0;
        QTest::newRow("empty crop") << media << QByteArray("0 0 0 0") << none << 600 / 800.0;
    }

    void aspects()
    {
        QFETCH(QByteArray, media);
        QFETCH(QByteArray, crop);
        QFETCH(QByteArray, rotation);
        const auto document = open(TestPDFs::file({ { .media = media, .crop = crop, .rotation = rotation } }));
        QTEST(PDFPageCell(document, 0, 100).aspect(), "aspect");
    }

    void aMissingPageHasTheShapeOfUprightPaper()
    {
        const auto document = open(TestPDFs::colored(1));
        QCOMPARE(PDFPageCell(document, 1, 100).aspect(), 0.7072135785007072);
        QCOMPARE(PDFPageCell(document, -1, 100).aspect(), 0.7072135785007072);
        QVERIFY(document->picture(1, QSize(10, 10)).isNull());
    }

    void renderKeys_data()
    {
        QTest::addColumn<int>("index");
        QTest::addColumn<double>("width");
        QTest::addColumn<QString>("key");
        QTest::newRow("250") << 3 << 250.0 << u"3-10"_s;
        QTest::newRow("window of 1000") << 0 << 477.0 << u"0-19"_s;
        QTest::newRow("just below a step") << 1 << 479.9 << u"1-19"_s;
        QTest::newRow("a step") << 1 << 480.0 << u"1-20"_s;
        QTest::newRow("thumbnail") << 12 << 54.0 << u"12-2"_s;
        QTest::newRow("negative") << 2 << -30.0 << u"2--1"_s;
        QTest::newRow("hardly negative") << 2 << -3.0 << u"2-0"_s;
    }

    void renderKeys()
    {
        QFETCH(int, index);
        QFETCH(double, width);
        QTEST(PDFPageCell(open(TestPDFs::colored(1)), index, width).renderKey(), "key");
    }

    void aPictureIsTwiceAsWide()
    {
        const auto document = open(TestPDFs::file({ { .media = "0 0 300 200" }, { .media = "0 0 3 14400" } }));
        QCOMPARE(PDFPageCell(document, 0, 477).imageSize(), QSize(954, 636));
        QCOMPARE(PDFPageCell(document, 0, 54).imageSize(), QSize(108, 72));
        QVERIFY(!PDFPageCell(document, 0, 20).imageSize());
        QVERIFY(!PDFPageCell(document, 0, 20).needsImage());
        QVERIFY(!PDFPageCell(document, 0, -5).imageSize());
        QCOMPARE(PDFPageCell(document, 0, 20.5).imageSize(), QSize(41, 27));
        // A ribbon does not take gigabytes.
        const QSize ribbon = PDFPageCell(document, 1, 1000).imageSize().value();
        QVERIFY(qint64(ribbon.width()) * ribbon.height() <= qint64(64) << 20);
        QVERIFY(ribbon.width() >= 1 && ribbon.height() <= 30000);
    }

    void onePictureServesItsBandOfWidths()
    {
        const auto document = open(TestPDFs::colored(1));
        PDFPageCell cell(document, 0, 241);
        QVERIFY(cell.needsImage());
        const QString key = cell.renderKey();
        cell.setPicture(key, PagePicture(document->picture(0, cell.imageSize().value()), int(cell.width())));
        QVERIFY(!cell.needsImage());
        cell.setWidth(263.9);
        QVERIFY(!cell.needsImage());
        cell.setWidth(264);
        QVERIFY(cell.needsImage());
        QVERIFY(!cell.image().isNull());
        // A page that cannot be drawn is not asked for again and again.
        cell.setPicture(cell.renderKey(), {});
        QVERIFY(!cell.needsImage());
        QVERIFY(!cell.image().isNull());
    }

    void whitePaperWithAShadowUntilThePictureComes()
    {
        const auto document = open(TestPDFs::colored(1));
        PDFPageCell cell(document, 0, 100);
        const QRectF place(50, 40, 100, 120);
        const QImage before = painted(cell, place);
        QCOMPARE(before.pixel(50, 40), qRgb(255, 255, 255));
        QCOMPARE(before.pixel(149, 159), qRgb(255, 255, 255));
        QCOMPARE(before.pixel(10, 10), qRgb(200, 200, 200));
        // Darker right below the page than right above it: the shadow falls downwards.
        const auto gray = [&before](int x, int y) { return qGray(before.pixel(x, y)); };
        QVERIFY(gray(100, 160) < 185);
        QVERIFY(gray(100, 160) < gray(100, 39));
        QVERIFY(gray(100, 162) < 200 && gray(100, 162) > gray(100, 160));
        QCOMPARE(gray(100, 170), 200);
        QCOMPARE(gray(49, 100), gray(150, 100));
        QVERIFY(gray(49, 100) < 185);

        cell.setPicture(
            cell.renderKey(), PagePicture(document->picture(0, cell.imageSize().value()), int(cell.width())));
        const QImage after = painted(cell, place);
        for (const QPoint at : { QPoint(50, 40), QPoint(100, 100), QPoint(149, 159) })
            QCOMPARE(after.pixel(at), TestPDFs::colorOf(0));
        QCOMPARE(after.pixel(100, 160), before.pixel(100, 160));
    }

    void pagesAreDrawnOnWhiteAsTheyAreDisplayed()
    {
        // The left half of the uncropped page is red, and it is turned by a quarter, so that the top is.
        const auto document = open(TestPDFs::file({ { .media = "0 0 400 400",
            .crop = "0 0 400 200",
            .rotation = "90",
            .drawing = "1 0 0 rg 0 0 200 400 re f" } }));
        const QImage image = document->picture(0, QSize(100, 200));
        QCOMPARE(image.size(), QSize(100, 200));
        QVERIFY(!image.hasAlphaChannel());
        QCOMPARE(image.pixel(50, 20), qRgb(255, 0, 0));
        QCOMPARE(image.pixel(50, 180), qRgb(255, 255, 255));
    }

    void thinLinesStayThinOnSmallPictures()
    {
        QByteArray staff = "0.3 w\n";
        for (int y = 0; y < 800; y += 4)
            staff += "0 " + QByteArray::number(y) + " m 600 " + QByteArray::number(y) + " l S\n";
        const auto document = open(TestPDFs::file({ { .media = "0 0 600 800", .drawing = staff } }));
        const QImage thumbnail = document->picture(0, QSize(108, 144));
        QVERIFY2(qGray(thumbnail.pixel(54, 72)) > 150, "staves run together to black bars");
    }

    void thinLinesStayOnScreensOfEveryDensity()
    {
        const auto document = open(TestPDFs::colored(1));
        PDFPageCell cell(document, 0, 48);
        // As the drawing library leaves staves: lines of one pixel, here at odd and even rows.
        QImage staves(96, 1200, QImage::Format_RGB32);
        staves.fill(Qt::white);
        for (int y = 20; y < 1180; y += 19) {
            for (int x = 0; x < staves.width(); ++x)
                staves.setPixel(x, y, qRgb(0, 0, 0));
        }
        for (const double density : { 1.0, 1.25, 1.5, 1.75, 2.0 }) {
            cell.setPicture(cell.renderKey(), PagePicture(staves, qRound(48 * density)));
            // At its own size, and anywhere in the band of sizes that the picture serves.
            for (const double scale : { 1.0, 1.013, 1.04 }) {
                QImage canvas(QSize(200, 2600), QImage::Format_RGB32);
                canvas.fill(Qt::white);
                QPainter painter(&canvas);
                const QRectF place(20, 20, 48 * density * scale, std::round(600 * density * scale));
                cell.paint(painter, place);
                painter.end();
                const double step = place.height() / staves.height();
                for (int y = 20; y < 1180; y += 19) {
                    int darkest = 255;
                    for (int row = -2; row <= 2; ++row)
                        darkest = std::min(darkest, qGray(canvas.pixel(40, 20 + int(y * step) + row)));
                    QVERIFY2(darkest < 192, qPrintable(QStringLiteral("line %1 at %2").arg(y).arg(density * scale)));
                }
            }
        }
    }

    void aPageThatCannotBeDrawnSaysSo()
    {
        const auto document = open(TestPDFs::colored(1));
        const QRectF place(10, 10, 150, 180);
        PDFPageCell cell(document, 0, place.width());
        const QImage before = painted(cell, place);
        QVERIFY(!cell.isUndrawable());
        cell.setPicture(cell.renderKey(), {});
        QVERIFY(cell.isUndrawable() && !cell.needsImage());
        const QImage words = painted(cell, place);
        QVERIFY(words != before);
        // Too small for words.
        const QRectF small(10, 10, 54, 70);
        QVERIFY(painted(cell, small) != painted(PDFPageCell(document, 0, 54), small));
        // A picture that there was before is better than words.
        cell.setPicture(u"older"_s, PagePicture(QImage(10, 10, QImage::Format_RGB32), 10));
        cell.setPicture(cell.renderKey(), {});
        QVERIFY(!cell.isUndrawable());
    }
};

QTEST_MAIN(TestPDFPageCell)
#include "test_pdf_page_cell.moc"
