#include "pdf/conversion/ResultFiles.h"
#include "tests/pdf/conversion/Archives.h"
#include "tests/pdf/conversion/Files.h"

#include <QDir>
#include <QTemporaryDir>
#include <QTest>

using namespace PDFConverter;
using namespace Qt::StringLiterals;

class TestResultFiles final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<QTemporaryDir> m_folder;

    QString path(const QString &name) const { return m_folder->filePath(name); }

    void make(const QStringList &names) const
    {
        for (const QString &name : names) {
            QDir().mkpath(QFileInfo(path(name)).path());
            writeFile(m_folder->path(), name, "x");
        }
    }

    QStringList collected(const QStringList &order) const
    {
        QStringList names;
        const QStringList paths = collectMxls(m_folder->path(), order);
        for (const QString &result : paths)
            names << QDir(m_folder->path()).relativeFilePath(result);
        return names;
    }

    QString unpackingFails(const QString &name, qint64 most = mostScoreBytes) const
    {
        const Result<QByteArray> result = extractScoreXml(path(name), most);
        return result ? QString() : result.failure().message;
    }

    QByteArray bytesOf(const QString &name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void inTheOrderOfTheInputs()
    {
        make({ u"page-002.mxl"_s, u"page-001.mxl"_s, u"page-001.omr"_s, u"page-001.log"_s });
        QCOMPARE(collected({ u"/x/page-001.png"_s, u"/x/page-002.png"_s }),
            QStringList({ u"page-001.mxl"_s, u"page-002.mxl"_s }));
        QCOMPARE(collected({ u"/x/page-002.png"_s, u"/x/page-001.png"_s }),
            QStringList({ u"page-002.mxl"_s, u"page-001.mxl"_s }));
    }

    void anInputWithoutAResultIsLeftOut()
    {
        make({ u"page-001.mxl"_s, u"page-003.mxl"_s, u"other.mxl"_s });
        QCOMPARE(collected({ u"page-001.png"_s, u"page-002.png"_s, u"page-003.png"_s }),
            QStringList({ u"page-001.mxl"_s, u"page-003.mxl"_s }));
    }

    void anyCaseOfTheExtensionAnyDepthHiddenToo()
    {
        make({ u"page-001.MXL"_s, u"page-002/page-002.Mxl"_s, u".hidden/.deep/page-003.mxl"_s });
        QCOMPARE(collected({ u"page-001.png"_s, u"page-002.png"_s, u"page-003.png"_s }),
            QStringList({ u"page-001.MXL"_s, u"page-002/page-002.Mxl"_s, u".hidden/.deep/page-003.mxl"_s }));
    }

    void theCaseOfTheStemCounts()
    {
        make({ u"Song.mxl"_s, u"z.mxl"_s });
        QCOMPARE(collected({ u"song.pdf"_s }), QStringList({ u"Song.mxl"_s, u"z.mxl"_s })); // none matches: all
        QCOMPARE(collected({ u"song.pdf"_s, u"z.png"_s }), QStringList{ u"z.mxl"_s });
    }

    void twoInputsOfOneStemGetTheSameResult()
    {
        make({ u"a.mxl"_s });
        QCOMPARE(collected({ u"1/a.png"_s, u"2/a.png"_s }), QStringList({ u"a.mxl"_s, u"a.mxl"_s }));
    }

    void aPdfAndItsResult()
    {
        make({ u"song.mxl"_s });
        QCOMPARE(collected({ u"/music/song.pdf"_s }), QStringList{ u"song.mxl"_s });
    }

    void withoutAMatchAllInTheOrderOfTheirPaths()
    {
        make({ u"song.mvt2.mxl"_s, u"b/a.mxl"_s, u"song.mvt1.mxl"_s, u"other.mxl"_s, u".mxl"_s });
        QCOMPARE(collected({ u"song.pdf"_s }),
            QStringList({ u"b/a.mxl"_s, u"other.mxl"_s, u"song.mvt1.mxl"_s, u"song.mvt2.mxl"_s }));
    }

    void aNameWithDots()
    {
        make({ u"a.b.mxl"_s });
        QCOMPARE(collected({ u"a.b.pdf"_s }), QStringList{ u"a.b.mxl"_s });
    }

    void noFolder() { QVERIFY(collectMxls(path(u"missing"_s), { u"a.pdf"_s }).isEmpty()); }

    void everyMemberOutsideOfMetaInf()
    {
        writeArchive(path(u"a.mxl"_s),
            { { u"META-INF/container.xml"_s, "no" }, { u"second.xml"_s, "<b/>" }, { u"folder/"_s, {} },
                { u"folder/META-INF/x"_s, "<c/>" }, { u"a.xml"_s, "<d/>" }, { u"META-INF/deep/x"_s, "no" },
                { u"META-INFO"_s, "<e/>" } });
        const Result<QByteArray> bytes = extractScoreXml(path(u"a.mxl"_s));
        QVERIFY(bytes);
        QCOMPARE(*bytes, QByteArray("<b/><c/><d/><e/>"));
    }

    void archivesThatAreBroken()
    {
        const QString message = u"Could not unpack page-003.mxl."_s;
        const QString name = u"page-003.mxl"_s;
        QCOMPARE(unpackingFails(name), message); // missing
        writeFile(m_folder->path(), name, "");
        QCOMPARE(unpackingFails(name), message);
        writeFile(m_folder->path(), name, "no archive");
        QCOMPARE(unpackingFails(name), message);
        writeArchive(path(name), { { u"META-INF/container.xml"_s, "x" } });
        QCOMPARE(unpackingFails(name), message);
        writeArchive(path(name), { { u"a.xml"_s, "" } });
        QCOMPARE(unpackingFails(name), message);
        writeArchive(path(name), { { u"a.xml"_s, "<a/>" } }, "secret");
        QCOMPARE(unpackingFails(name), message);
    }

    void aMemberThatIsDamaged()
    {
        QByteArray text;
        for (int i = 0; i < 20000; ++i)
            text += QByteArray::number(i * 7919 % 10007);
        writeArchive(path(u"a.mxl"_s), { { u"a.xml"_s, "<good/>" }, { u"b.xml"_s, text } });
        const QByteArray whole = bytesOf(u"a.mxl"_s);
        QVERIFY(extractScoreXml(path(u"a.mxl"_s)));

        QByteArray flipped = whole;
        flipped[flipped.size() / 2] = char(~flipped[flipped.size() / 2]);
        writeFile(m_folder->path(), u"a.mxl"_s, flipped);
        QCOMPARE(unpackingFails(u"a.mxl"_s), u"Could not unpack a.mxl."_s);

        writeFile(m_folder->path(), u"a.mxl"_s, whole.first(whole.size() / 2));
        QCOMPARE(unpackingFails(u"a.mxl"_s), u"Could not unpack a.mxl."_s);
    }

    void aBombEndsBeforeItGoesOff()
    {
        // 64 MiB of one letter, twice, in some 130 KB.
        const QByteArray much(64 << 20, 'a');
        writeArchive(path(u"bomb.mxl"_s), { { u"1.xml"_s, much }, { u"2.xml"_s, much } });
        QVERIFY(QFileInfo(path(u"bomb.mxl"_s)).size() < (1 << 20));
        const QString message = u"Could not unpack bomb.mxl."_s;
        QCOMPARE(unpackingFails(u"bomb.mxl"_s, much.size() - 1), message);
        // The members count together.
        QCOMPARE(unpackingFails(u"bomb.mxl"_s, 2 * much.size() - 1), message);
        QCOMPARE(unpackingFails(u"bomb.mxl"_s, 2 * much.size()), QString());
    }

    void theBoundIsThere()
    {
        const QByteArray piece(mostScoreBytes / 4, 'a');
        QList<Member> members;
        for (int i = 0; i < 4; ++i)
            members.append({ QString::number(i), piece });
        members.append({ u"last"_s, "a" });
        writeArchive(path(u"bomb.mxl"_s), members);
        QCOMPARE(unpackingFails(u"bomb.mxl"_s), u"Could not unpack bomb.mxl."_s);
    }
};

QTEST_GUILESS_MAIN(TestResultFiles)
#include "test_result_files.moc"
