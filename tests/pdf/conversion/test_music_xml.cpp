#include "pdf/conversion/MusicXmlAssembly.h"

#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

namespace {

MusicXmlDocument parsed(const QByteArray &bytes)
{
    Result<MusicXmlDocument> document = MusicXmlDocument::parse(bytes);
    if (!document)
        qFatal("%s", qPrintable(document.failure().message));
    return std::move(*document);
}

QByteArray measures(int count, const QByteArray &content = {})
{
    QByteArray xml;
    for (int number = 1; number <= count; ++number)
        xml += "<measure number=\"" + QByteArray::number(number) + '"'
            + (content.isEmpty() ? "/>" : '>' + content + "</measure>");
    return xml;
}

QByteArray score(const QByteArray &parts) { return "<score-partwise><part-list/>" + parts + "</score-partwise>"; }

QByteArray part(int count, const QByteArray &content = {})
{
    return "<part id=\"P1\">" + measures(count, content) + "</part>";
}

Result<MusicXmlDocument> merged(const QList<QByteArray> &documents)
{
    std::vector<MusicXmlDocument> docs;
    for (const QByteArray &bytes : documents)
        docs.push_back(parsed(bytes));
    return merge(std::move(docs));
}

QStringList numbersOf(MusicXmlDocument &document)
{
    QStringList numbers;
    for (const pugi::xml_node &measure : document.tree().document_element().child("part").children("measure"))
        numbers << QString::fromUtf8(measure.attribute("number").value());
    return numbers;
}

QByteArray stripped(const QByteArray &bytes)
{
    MusicXmlDocument document = parsed(bytes);
    stripOctaveShifts(document);
    return document.serialise();
}

QStringList upTo(int last)
{
    QStringList numbers;
    for (int number = 1; number <= last; ++number)
        numbers << QString::number(number);
    return numbers;
}

} // namespace

class TestMusicXml final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void comesOutAsItWentIn_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("everything") << QByteArray(
            "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\r\n"
            "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\" "
            "\"http://www.musicxml.org/dtds/partwise.dtd\">\n"
            "<!-- before --><?before it?>\n"
            "<score-partwise version=\"4.0\">\n\t <!-- a - comment -->\n  <?and an instruction?>\n"
            "  <words xml:space=\"preserve\">  two  blanks  </words>  <empty/>\n"
            "  <![CDATA[ <raw> & ]]>]]&gt;\r\n"
            "</score-partwise>\n<!-- after -->\n");
        QTest::newRow("references") << QByteArray(
            "<a b=\"&quot;&apos;&#10;&#x9;&lt;\">&amp;&lt;&gt;&#233;&#xE9;&#13;</a>");
        QTest::newRow("attributes with white space") << QByteArray("<a b=\" 1\n2\t3  4 \"/>");
        QTest::newRow("characters") << QByteArray("<a b=\"ß\">Ärger ♭𝄞 \xcc\x88</a>");
        QTest::newRow("entities of its own")
            << QByteArray("<!DOCTYPE a [<!ENTITY x \"<y/>\"><!ELEMENT a ANY>]><a>&x;&x;</a>");
        QTest::newRow("byte order mark") << QByteArray("\xef\xbb\xbf<a>é</a>");
        QTest::newRow("Latin-1") << QByteArray("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><a b=\"\xe9\">\xdf</a>");
        QTest::newRow("Latin-1 by another name")
            << QByteArray("<?xml version='1.0' encoding='latin1'?><a>\xdf</a>").replace('\'', '"');
        for (const QStringConverter::Encoding encoding : { QStringConverter::Utf16LE, QStringConverter::Utf16BE }) {
            for (const bool mark : { true, false }) {
                const QString text = u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<a b=\"é\">♭𝄞 ß</a>\n"_s;
                QStringEncoder encoder(
                    encoding, mark ? QStringConverter::Flag::WriteBom : QStringConverter::Flag::Default);
                QTest::addRow("%s%s", QStringConverter::nameForEncoding(encoding), mark ? " with its mark" : "")
                    << QByteArray(encoder(text));
            }
        }
    }

    void comesOutAsItWentIn()
    {
        QFETCH(QByteArray, bytes);
        QCOMPARE(parsed(bytes).serialise(), bytes);
    }

    void singleQuotesBecomeDoubleOnes()
    {
        QCOMPARE(parsed("<a b='x' c='say \"hi\"'/>").serialise(), QByteArray("<a b=\"x\" c=\"say &quot;hi&quot;\"/>"));
    }

    void nothingIsLoadedFromOutside()
    {
        const QTemporaryDir folder;
        QFile secret(folder.filePath(u"secret"_s));
        QVERIFY(secret.open(QIODevice::WriteOnly));
        secret.write("secret");
        secret.close();
        const QByteArray bytes
            = "<!DOCTYPE a [<!ENTITY x SYSTEM \"file://" + QFile::encodeName(secret.fileName()) + "\">]><a>&x;</a>";
        QCOMPARE(parsed(bytes).serialise(), bytes);
        // Neither does an entity grow: a thousand million of them stay one word.
        const QByteArray laughs
            = "<!DOCTYPE a [<!ENTITY a \"ha\"><!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">]><a>&b;</a>";
        QCOMPARE(parsed(laughs).serialise(), laughs);
    }

    void whatIsNotWellFormed_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("text") << QByteArray("text");
        QTest::newRow("no element") << QByteArray("<?xml version=\"1.0\"?><!-- x -->");
        QTest::newRow("not closed") << QByteArray("<a><b></a>");
        QTest::newRow("cut off") << QByteArray("<a><b>text");
        QTest::newRow("two elements") << QByteArray("<a/><b/>");
        QTest::newRow("text after it") << QByteArray("<a/>text");
    }

    void whatIsNotWellFormed()
    {
        QFETCH(QByteArray, bytes);
        const Result<MusicXmlDocument> document = MusicXmlDocument::parse(bytes);
        QVERIFY(!document);
        QVERIFY2(document.failure().message.startsWith(u"The score that Audiveris wrote could not be read: "_s),
            qPrintable(document.failure().message));
        QVERIFY(document.failure().message.endsWith(u'.') && !document.failure().message.endsWith(u".."_s));
    }

    void nestingHasABound()
    {
        const auto nested
            = [](int depth) { return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth); };
        QVERIFY(MusicXmlDocument::parse(nested(900)));
        QVERIFY(!MusicXmlDocument::parse(nested(1100)));
        QVERIFY(!MusicXmlDocument::parse(nested(2000000)));
        QVERIFY(!MusicXmlDocument::parse(QByteArray("<a>").repeated(2000000)));
    }

    void threePagesAreNumberedOn()
    {
        Result<MusicXmlDocument> document = merged({ score(part(4)), score(part(3)), score(part(5)) });
        QVERIFY(document);
        QCOMPARE(numbersOf(*document), upTo(12));
        QCOMPARE(document->serialise(), score(part(12)));
    }

    void whatIsMergedStaysOtherwise()
    {
        const QByteArray first = "<?xml version=\"1.0\"?>\n<!DOCTYPE score-partwise>\n<score-partwise>\n <part-list/>\n"
                                 " <part id=\"P1\">\n  <measure number=\"X1\"> <a/> </measure>\n </part>\n"
                                 " <part id=\"P2\"><measure number=\"9\"/></part>\n</score-partwise>\n";
        const QByteArray second
            = "<score-partwise><part id=\"other\">\n<measure width=\"7\" number=\"41\" x=\"&amp;\">\n"
              "<attributes><divisions>8</divisions></attributes><!-- c --></measure>"
              "<measure implicit=\"yes\"/></part></score-partwise>";
        QByteArray expected = first;
        expected.replace("</measure>\n </part>",
            "</measure>\n <measure width=\"7\" number=\"2\" x=\"&amp;\">\n"
            "<attributes><divisions>8</divisions></attributes><!-- c --></measure><measure implicit=\"yes\"/></part>");
        Result<MusicXmlDocument> document = merged({ first, second });
        QVERIFY(document);
        QCOMPARE(document->serialise(), expected);
    }

    void aMeasureWithoutANumberIsCounted()
    {
        Result<MusicXmlDocument> document = merged(
            { score("<part><measure/><measure/></part>"), score("<part><measure/><measure number=\"\"/></part>") });
        QVERIFY(document);
        QCOMPARE(numbersOf(*document), QStringList({ QString(), QString(), QString(), u"4"_s }));
    }

    void onlyTheFirstPartOfAFurtherDocument()
    {
        Result<MusicXmlDocument> document = merged({ score(part(2)), score(part(1) + part(7)) });
        QVERIFY(document);
        QCOMPARE(numbersOf(*document), upTo(3));
    }

    void onlyTheFirstPartOfTheFirstGrows()
    {
        Result<MusicXmlDocument> document = merged({ score(part(2) + part(2)), score(part(1)) });
        QVERIFY(document);
        QCOMPARE(document->serialise(), score(part(3) + part(2)));
    }

    void furtherDocumentsWithoutMusicArePassedOver()
    {
        Result<MusicXmlDocument> document
            = merged({ score(part(1)), "<opus/>", score(""), score("<part/>"), score(part(1)) });
        QVERIFY(document);
        QCOMPARE(document->serialise(), score(part(2)));
        std::vector<MusicXmlDocument> docs;
        docs.push_back(parsed(score(part(1))));
        docs.emplace_back(); // no root at all
        QVERIFY(merge(std::move(docs)));
    }

    void aFirstDocumentWithoutAPart()
    {
        for (const QByteArray &first : { QByteArray("<opus/>"), score("<x><part/></x>") }) {
            const Result<MusicXmlDocument> document = merged({ first, score(part(1)) });
            QVERIFY(!document);
            QCOMPARE(document.failure().message, u"Unexpected MusicXML layout from Audiveris."_s);
        }
        std::vector<MusicXmlDocument> docs(1);
        QVERIFY(!merge(std::move(docs)));
    }

    void aFirstDocumentWithAnEmptyPart()
    {
        Result<MusicXmlDocument> document = merged({ score("<part id=\"P1\"/>"), score(part(2)) });
        QVERIFY(document);
        QCOMPARE(document->serialise(), score(part(2)));
    }

    void aCharacterThatTheEncodingLacks()
    {
        Result<MusicXmlDocument> document
            = merged({ "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><s><part>\xe9</part></s>",
                score("<part><measure>♭é</measure></part>") });
        QVERIFY(document);
        QCOMPARE(document->serialise(),
            QByteArray("<?xml version=\"1.0\" "
                       "encoding=\"ISO-8859-1\"?><s><part>\xe9<measure>&#9837;\xe9</measure></part></s>"));
    }

    void octaveShiftsGo_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<QByteArray>("after");
        const QByteArray shift = "<direction-type><octave-shift type=\"down\"/></direction-type>";
        const QByteArray words = "<direction-type><words>8va</words></direction-type>";
        QTest::newRow("none") << score(part(2, "<direction>" + words + "</direction>"))
                              << score(part(2, "<direction>" + words + "</direction>"));
        QTest::newRow("alone") << score(part(3, "<note/> <direction>" + shift + "</direction>\n<note/>"))
                               << score(part(3, "<note/> \n<note/>"));
        QTest::newRow("whole, with words beside it")
            << score(part(1, "<direction>" + words + shift + "<offset>1</offset></direction>")) << score(part(1));
        QTest::newRow("in one direction type with words")
            << QByteArray("<a><direction><direction-type><words/><octave-shift/></direction-type></direction></a>")
            << QByteArray("<a/>");
        QTest::newRow("elsewhere it stays")
            << QByteArray("<a><octave-shift/><direction><octave-shift/></direction><direction-type><octave-shift/>"
                          "</direction-type></a>")
            << QByteArray("<a><octave-shift/><direction><octave-shift/></direction><direction-type><octave-shift/>"
                          "</direction-type></a>");
        QTest::newRow("one inside of another")
            << "<a><direction>" + shift + "<x><direction>" + shift + "</direction></x></direction><b/></a>"
            << QByteArray("<a><b/></a>");
        QTest::newRow("the document itself") << "<a><direction>" + shift + "</direction></a>" << QByteArray("<a/>");
    }

    void octaveShiftsGo()
    {
        QFETCH(QByteArray, before);
        QTEST(stripped(before), "after");
    }
};

QTEST_APPLESS_MAIN(TestMusicXml)
#include "test_music_xml.moc"
