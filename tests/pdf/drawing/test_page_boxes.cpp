#include "pdf/drawing/PageBoxes.h"
#include "tests/support/TestPDFs.h"
#include "tests/support/TestSurroundings.h"

#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray fileAt(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::optional<std::vector<PageBox>> boxes(const QByteArray &bytes) { return PageBoxes::read(bytes); }

} // namespace

class TestPageBoxes final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void boxesAsTheyStandInTheFile()
    {
        const auto read = boxes(TestPDFs::file({ { .media = "10 20 610 820", .crop = "30 40 130 90" },
            { .media = "-100.5 0 100 50", .rotation = "270" } }));
        QVERIFY(read);
        QCOMPARE(read->size(), 2U);
        QCOMPARE(read->at(0).media, QRectF(10, 20, 600, 800));
        QCOMPARE(read->at(0).crop, QRectF(30, 40, 100, 50));
        QCOMPARE(read->at(0).rotation, 0);
        QCOMPARE(read->at(1).media, QRectF(-100.5, 0, 200.5, 50));
        QCOMPARE(read->at(1).crop, read->at(1).media);
        QCOMPARE(read->at(1).rotation, 270);
    }

    void inheritedValues()
    {
        const auto read = boxes(TestPDFs::file({ { .media = {} }, { .media = "0 0 50 60", .rotation = "0" } },
            "/MediaBox [0 0 300 200] /CropBox [0 0 100 100] /Rotate 90"));
        QVERIFY(read);
        QCOMPARE(read->at(0).media, QRectF(0, 0, 300, 200));
        QCOMPARE(read->at(0).crop, QRectF(0, 0, 100, 100));
        QCOMPARE(read->at(0).rotation, 90);
        QCOMPARE(read->at(1).crop, QRectF(0, 0, 50, 60));
        QCOMPARE(read->at(1).rotation, 0);
    }

    void nonsense_data()
    {
        QTest::addColumn<QByteArray>("media");
        QTest::addColumn<QByteArray>("crop");
        QTest::addColumn<QByteArray>("rotation");
        QTest::addColumn<QRectF>("shown");
        QTest::addColumn<int>("turn");
        const QByteArray media = "0 0 500 700";
        const QByteArray none;
        const QRectF whole(0, 0, 500, 700);
        const QRectF letter(0, 0, 612, 792);
        QTest::newRow("no box at all") << none << none << none << letter << 0;
        QTest::newRow("three numbers") << QByteArray("0 0 500") << none << none << letter << 0;
        QTest::newRow("names") << QByteArray("/a /b /c /d") << none << none << letter << 0;
        QTest::newRow("no area") << QByteArray("0 0 500 0") << none << none << letter << 0;
        QTest::newRow("corners the other way") << QByteArray("500 700 0 0") << none << none << whole << 0;
        QTest::newRow("crop without area") << media << QByteArray("9 9 9 9") << none << whole << 0;
        QTest::newRow("crop beside the media box") << media << QByteArray("600 0 900 700") << none << QRectF() << 0;
        QTest::newRow("crop beyond the media box")
            << media << QByteArray("-9 100 900 900") << none << QRectF(0, 100, 500, 600) << 0;
        QTest::newRow("once around") << media << none << QByteArray("360") << whole << 0;
        QTest::newRow("backwards") << media << none << QByteArray("-90") << whole << 270;
        QTest::newRow("far around") << media << none << QByteArray("-1170") << whole << 270;
        QTest::newRow("no quarter turn") << media << none << QByteArray("100") << whole << 90;
        QTest::newRow("no number") << media << none << QByteArray("/Left") << whole << 0;
    }

    void nonsense()
    {
        QFETCH(QByteArray, media);
        QFETCH(QByteArray, crop);
        QFETCH(QByteArray, rotation);
        const auto read = boxes(TestPDFs::file({ { .media = media, .crop = crop, .rotation = rotation } }));
        QVERIFY(read);
        QTEST(read->at(0).crop, "shown");
        QTEST(read->at(0).rotation, "turn");
    }

    void whatCannotBeRead()
    {
        QVERIFY(!boxes("no PDF at all"));
        QVERIFY(!boxes({}));
    }

    void aBrokenTableIsRepaired()
    {
        const auto read = boxes(TestPDFs::withBrokenTable(TestPDFs::colored(7)));
        QVERIFY(read);
        QCOMPARE(read->size(), 7U);
    }

    void passwords()
    {
        const TestSurroundings world;
        const QString path = world.file(u"x.pdf"_s, TestPDFs::colored(3)).toLocalFile();
        QVERIFY(TestPDFs::encrypt(path, ""));
        QCOMPARE(PageBoxes::read(fileAt(path)).value().size(), 3U);
        QVERIFY(TestPDFs::encrypt(path, "secret"));
        QVERIFY(!PageBoxes::read(fileAt(path)));
    }

    void deepTrees()
    {
        const auto deep = boxes(TestPDFs::nested(PageBoxes::deepest));
        QVERIFY(deep);
        QCOMPARE(deep->size(), 1U);
        QCOMPARE(deep->at(0).crop, QRectF(0, 0, 300, 200));
        const auto deeper = boxes(TestPDFs::nested(PageBoxes::deepest + 1));
        QVERIFY(deeper && deeper->empty());
        const auto abyss = boxes(TestPDFs::nested(20'000));
        QVERIFY(abyss && abyss->empty());
    }

    void aTreeThatContainsItself()
    {
        QByteArray bytes = TestPDFs::nested(3);
        // The second node, object 3, lists the root beside the third. What follows stays in its place.
        const QByteArray kids = "/Kids [4 0 R] /Count 1";
        QVERIFY(bytes.contains(kids));
        bytes.replace(kids, QByteArray("/Kids [4 0 R 2 0 R]").leftJustified(kids.size()));
        const auto read = boxes(bytes);
        QVERIFY(read);
        QCOMPARE(read->size(), 1U);

        // Where the file's table is broken as well, newer versions of the library refuse it.
        const auto broken = boxes(TestPDFs::withBrokenTable(bytes));
        QVERIFY(!broken || broken->size() == 1);
    }
};

QTEST_APPLESS_MAIN(TestPageBoxes)
#include "test_page_boxes.moc"
