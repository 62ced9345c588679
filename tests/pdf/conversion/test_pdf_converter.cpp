#include "pdf/conversion/MusicXmlDocument.h"
#include "pdf/conversion/PDFConverter.h"
#include "tests/pdf/conversion/Files.h"
#include "tests/pdf/conversion/Processes.h"
#include "tests/pdf/conversion/StandIn.h"
#include "tests/support/TestPDFs.h"

#include <QDir>
#include <QImageReader>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

/// The operators that rule staves: five lines each, `gap` units apart, from `top` downwards.
QByteArray staff(double top, double gap)
{
    QByteArray content = "1 w ";
    for (int line = 0; line < 5; ++line) {
        const QByteArray y = QByteArray::number(top - line * gap);
        content += "10 " + y + " m 190 " + y + " l S ";
    }
    return content;
}

// 4 units are 33 pixels, 7 are 58.
const TestPDFs::Page notation{ .media = "0 0 200 200", .drawing = staff(180, 4) + staff(90, 4) };
const TestPDFs::Page withTab{ .media = "0 0 200 200", .drawing = staff(180, 4) + staff(90, 7) };

} // namespace

class TestPdfConverter final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QTemporaryDir> m_temporary;

    QString pdf(const QList<TestPDFs::Page> &pages, const QString &name = u"song.pdf"_s) const
    {
        return writeFile(m_folder->path(), name, TestPDFs::file(pages));
    }

    Result<QByteArray> converted(const QString &path) const { return convert(path, StandIn::program()); }

    QString failure(const QString &path) const
    {
        const Result<QByteArray> result = converted(path);
        return result ? QString() : result.failure().message;
    }

    QStringList leftBehind() const
    {
        return QDir(m_temporary->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    }

    static int count(const QByteArray &bytes, const char *text) { return int(bytes.count(text)); }

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        m_temporary = std::make_unique<QTemporaryDir>();
        qputenv("TMPDIR", QFile::encodeName(m_temporary->path()));
    }

    void cleanup() { qunsetenv("TMPDIR"); }

    void notationAloneGoesAsThePdf()
    {
        const StandIn audiveris(m_folder->path(), "", "7");
        const QString path = pdf({ notation, notation });
        const Result<QByteArray> xml = converted(path);
        QVERIFY2(xml, xml ? "" : qPrintable(xml.failure().message));
        QCOMPARE(audiveris.report(), QStringList{ path });
        QCOMPARE(count(*xml, "<measure "), 7);
        QVERIFY(leftBehind().isEmpty());
    }

    void tablatureOnOnePageSendsAllOfThemAsImages()
    {
        const StandIn audiveris(m_folder->path(), "", "4,3,5");
        const Result<QByteArray> xml = converted(pdf({ notation, notation, withTab, notation, notation }));
        QVERIFY2(xml, xml ? "" : qPrintable(xml.failure().message));
        const QStringList inputs = audiveris.report();
        QCOMPARE(inputs.size(), 5);
        static const QRegularExpression place(
            u"^(.*)/qv-omr-[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}/page-00([1-5]).png$"_s);
        for (int i = 0; i < 5; ++i) {
            const QRegularExpressionMatch match = place.match(inputs[i]);
            QVERIFY2(match.hasMatch(), qPrintable(inputs[i]));
            QCOMPARE(match.captured(1), m_temporary->path());
            QCOMPARE(match.captured(2), QString::number(i + 1));
        }
        QCOMPARE(count(*xml, "<measure "), 4 + 3 + 5 + 4 + 4);
        QVERIFY(xml->contains("<measure number=\"20\">"));
        QVERIFY(leftBehind().isEmpty());
    }

    void aDebugFolderKeepsEverything()
    {
        const QString kept = m_folder->filePath(u"debug/folder"_s);
        for (const char *words : { "", "fail" }) {
            const StandIn audiveris(m_folder->path(), words);
            const Result<QByteArray> xml = convert(pdf({ notation, withTab }), StandIn::program(), kept);
            QCOMPARE(bool(xml), *words == '\0');
            QVERIFY(QFile::exists(kept + u"/page-001.png"_s));
            QVERIFY(QFile::exists(kept + u"/page-002.png"_s));
            QVERIFY(QFileInfo(kept + u"/out"_s).isDir());
            QVERIFY(leftBehind().isEmpty());
        }
        QVERIFY(QFile::exists(kept + u"/out/page-001.mxl"_s));

        // The first page as it was, the second without its lower staff.
        const QImage first(kept + u"/page-001.png"_s);
        const QImage second(kept + u"/page-002.png"_s);
        QCOMPARE(first.size(), QSize(1667, 1667));
        const auto darkRows = [](const QImage &image) {
            int rows = 0;
            for (int y = 0; y < image.height(); ++y)
                rows += qGray(image.pixel(800, y)) < 128;
            return rows;
        };
        QVERIFY(darkRows(second) > 0);
        QCOMPARE(darkRows(first), 2 * darkRows(second));
    }

    void whatTheEngineMayDo_data()
    {
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<int>("measures");
        QTest::newRow("a folder a book") << QByteArray("folders") << 12;
        QTest::newRow("other names") << QByteArray("odd-names") << 12;
        QTest::newRow("several movements") << QByteArray("movements") << 24;
        QTest::newRow("no music on the first pages") << QByteArray("last-only") << 4;
        QTest::newRow("octave shifts") << QByteArray("shifts") << 12;
        QTest::newRow("much to say") << QByteArray("loud") << 12;
    }

    void whatTheEngineMayDo()
    {
        QFETCH(QByteArray, words);
        QFETCH(int, measures);
        const StandIn audiveris(m_folder->path(), words.constData());
        const Result<QByteArray> xml = converted(pdf({ withTab, notation, withTab }));
        QVERIFY2(xml, xml ? "" : qPrintable(xml.failure().message));
        QCOMPARE(count(*xml, "<measure "), measures);
        QCOMPARE(count(*xml, "octave-shift"), 0);
        QVERIFY(MusicXmlDocument::parse(*xml));
        QVERIFY(leftBehind().isEmpty());
    }

    void oneResultComesThroughUnchanged()
    {
        const StandIn audiveris(m_folder->path());
        const Result<QByteArray> xml = converted(pdf({ notation }));
        QVERIFY(xml);
        QVERIFY(xml->startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE score-partwise PUBLIC "));
        QVERIFY(xml->endsWith("</measure></part></score-partwise>"));
    }

    void failures_data()
    {
        QTest::addColumn<QByteArray>("words");
        QTest::addColumn<QString>("message");
        const QString nothing = u"Audiveris found no readable music in this PDF. (TAB-only sheets can't be converted — "
                                u"only standard notation is read.)"_s;
        QTest::newRow("no result") << QByteArray("nothing") << nothing;
        QTest::newRow("tablature alone, of which it makes empty bars") << QByteArray("no-notes") << nothing;
        QTest::newRow("an empty result") << QByteArray("empty") << u"Could not unpack song.mxl."_s;
        QTest::newRow("no score") << QByteArray("odd-xml") << u"Unexpected MusicXML layout from Audiveris."_s;
        QTest::newRow("no XML") << QByteArray("broken-xml")
                                << u"The score that Audiveris wrote could not be read: Start-end tags mismatch."_s;
        QTest::newRow("a failing run") << QByteArray("mute") << u"Audiveris failed.\n\n"_s;
    }

    void failures()
    {
        QFETCH(QByteArray, words);
        const StandIn audiveris(m_folder->path(), words.constData());
        QTEST(failure(pdf({ notation })), "message");
        QVERIFY(leftBehind().isEmpty());
    }

    void aPageThatIsTooLargeWithTablature()
    {
        // Legal paper: 5100 by 8400 pixels.
        const StandIn engine(m_folder->path());
        const TestPDFs::Page large{ .media = "0 0 612 1008", .drawing = staff(900, 4) };
        const QString message = failure(pdf({ notation, large, withTab, notation }));
        QVERIFY2(message.startsWith(u"Audiveris failed.\n\nPage 2 is too large for it: 42.8 million pixels"_s),
            qPrintable(message));
        QVERIFY2(engine.report().isEmpty(), "it was run all the same");
        QVERIFY(leftBehind().isEmpty());
        // The PDF itself is drawn smaller.
        QVERIFY(converted(pdf({ notation, large })));
    }

    void aPageThatIsTooLargeInAnyFormIsSaidBeforeAnyWork()
    {
        const StandIn engine(m_folder->path());
        const TestPDFs::Page poster{ .media = "0 0 1600 1600" };
        int told = 0;
        const Result<QByteArray> result = convert(
            pdf({ notation, withTab, poster }), StandIn::program(), {}, {}, [&told](const Progress &) { ++told; });
        QVERIFY(!result);
        QVERIFY2(result.failure().message.startsWith(
                     u"Audiveris failed.\n\nPage 3 is too large for it: 177.8 million pixels"_s),
            qPrintable(result.failure().message));
        QCOMPARE(told, 0);
        QVERIFY2(engine.report().isEmpty(), "it was run all the same");
        QVERIFY(leftBehind().isEmpty());
        // Of what cannot even be drawn something else is said.
        QCOMPARE(failure(pdf({ { .media = "0 0 14400 14400" } })), u"Could not rasterize a PDF page."_s);
    }

    void progress()
    {
        const StandIn engine(m_folder->path(), "steps");
        QStringList told;
        const auto report = [&told](const Progress &p) { told << u"%1/%2 %3"_s.arg(p.page).arg(p.pages).arg(p.step); };
        QVERIFY(convert(pdf({ notation, notation }), StandIn::program(), {}, {}, report));
        QCOMPARE(told.first(3), QStringList({ u"1/2 "_s, u"2/2 "_s, u"0/0 "_s }));
        QCOMPARE(told.last(), u"0/0 HEADS"_s);
    }

    void noPdf()
    {
        const StandIn audiveris(m_folder->path());
        const QString message = u"Could not read the PDF."_s;
        // Were a folder made, this would be the failure.
        qputenv("TMPDIR", "/proc");
        QCOMPARE(failure(m_folder->filePath(u"missing.pdf"_s)), message);
        QCOMPARE(failure(writeFile(m_folder->path(), u"text.pdf"_s, "no PDF")), message);
        QCOMPARE(failure(pdf({})), message);
        QVERIFY(audiveris.report().isEmpty());
    }

    void noPlaceForTheFolder()
    {
        const StandIn audiveris(m_folder->path());
        qputenv("TMPDIR", "/proc");
        const QString message = failure(pdf({ notation }));
        QVERIFY2(message.startsWith(u"The folder /proc/qv-omr-"_s), qPrintable(message));
        QVERIFY(audiveris.report().isEmpty());
    }

    void anEmptyPageEndsIt()
    {
        const StandIn audiveris(m_folder->path());
        QCOMPARE(failure(pdf({ notation, { .media = "0 0 0.05 72" } })), u"Empty PDF page."_s);
        QVERIFY(leftBehind().isEmpty());
        QVERIFY(audiveris.report().isEmpty());
    }

    void aStopLeavesNothing()
    {
        const StandIn audiveris(m_folder->path(), "hang");
        const QString path = pdf({ notation });
        std::optional<Result<QByteArray>> result;
        std::jthread worker(
            [&](const std::stop_token &stop) { result = convert(path, StandIn::program(), std::nullopt, stop); });
        QTRY_COMPARE(audiveris.report().size(), 2);
        QCOMPARE(leftBehind().size(), 1);
        worker.request_stop();
        worker.join();
        QVERIFY(!*result);
        QVERIFY(leftBehind().isEmpty());
        QTRY_VERIFY(!anyRuns(audiveris.report().at(1)));
    }
};

QTEST_GUILESS_MAIN(TestPdfConverter)
#include "test_pdf_converter.moc"
