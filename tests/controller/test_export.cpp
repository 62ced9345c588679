#include "controller/AlphaTabController.h"
#include "controller/FileDialogs.h"
#include "tests/support/FullDisk.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
}

QVariantMap answer(const QVariant &data, const QVariant &title = u"Blues in A"_s)
{
    return { { u"type"_s, u"gpData"_s }, { u"data"_s, data }, { u"title"_s, title } };
}

} // namespace

class TestExport final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFileIsProposedAndWritten()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl target = QUrl::fromLocalFile(world.path(u"out.gp"_s));
        world.dialogs->fileToSave = target;
        c.handle(answer(u"AP8q"_s));
        world.letTimePass();
        QCOMPARE(world.dialogs->proposedName, u"Blues in A.gp"_s);
        QCOMPARE(world.dialogs->savedExtension, u"gp"_s);
        QCOMPARE(contents(target.toLocalFile()), QByteArray("\0\xff*", 3));
        QCOMPARE(c.recentFiles.value(), QList<QUrl>{ target });
        QVERIFY(!c.conversionError.value());
    }

    void thePanelOpensWhenTheMessageHasBeenDelivered()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(answer(u"AAAA"_s));
        QCOMPARE(world.dialogs->saved, 0);
        world.letTimePass();
        QCOMPARE(world.dialogs->saved, 1);
    }

    void proposals_data()
    {
        QTest::addColumn<QVariant>("title");
        QTest::addColumn<QString>("proposal");
        QTest::newRow("none") << QVariant() << u"Untitled.gp"_s;
        QTest::newRow("empty") << QVariant(QString()) << u"Untitled.gp"_s;
        QTest::newRow("turned around") << QVariant(u"a\u202eb"_s) << u"a\u202eb\u202c.gp"_s;
        QTest::newRow("as it stands") << QVariant(u" a/b "_s) << u" a/b .gp"_s;
    }

    void proposals()
    {
        QFETCH(QVariant, title);
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(answer(QString(), title));
        world.letTimePass();
        QTEST(world.dialogs->proposedName, "proposal");
    }

    void whatIsNotBase64OpensNoPanel_data()
    {
        QTest::addColumn<QString>("data");
        for (const char *data :
            { "A", "AAA", "AA=A", "AAA*", "AAAA\n", " AAAA", "AA-_", "A===", "====", "AAAA=", "ÄAAA" })
            QTest::newRow(data) << QString::fromUtf8(data);
    }

    void whatIsNotBase64OpensNoPanel()
    {
        QFETCH(QString, data);
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(answer(data));
        world.letTimePass();
        QCOMPARE(world.dialogs->saved, 0);
        QVERIFY(world.log->isEmpty());
        QVERIFY(!c.conversionError.value());
    }

    void withoutDataAnEmptyFileIsWritten()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        world.dialogs->fileToSave = QUrl::fromLocalFile(world.path(u"empty.gp"_s));
        c.handle({ { u"type"_s, u"gpData"_s } });
        world.letTimePass();
        QCOMPARE(world.dialogs->saved, 1);
        QVERIFY(QFile::exists(world.path(u"empty.gp"_s)));
        QCOMPARE(contents(world.path(u"empty.gp"_s)), QByteArray());
    }

    void cancelling()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle(answer(u"AAAA"_s));
        world.letTimePass();
        QCOMPARE(world.dialogs->saved, 1);
        QVERIFY(c.recentFiles.value().isEmpty());
        QVERIFY(!c.conversionError.value());
    }

    void anExistingFileIsReplacedAndMovesToTheFront()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl old = world.file(u"old.gp"_s, "a longer text than the new one");
        const QUrl other = world.file(u"other.gp"_s);
        c.recentFiles = QList<QUrl>{ other, old };
        world.dialogs->fileToSave = old;
        c.handle(answer(u"AP8q"_s));
        world.letTimePass();
        QCOMPARE(contents(old.toLocalFile()), QByteArray("\0\xff*", 3));
        QCOMPARE(c.recentFiles.value(), (QList<QUrl>{ old, other }));
    }

    void aFailedWriteIsToldAndLeavesEverythingAsItWas()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl other = world.file(u"other.gp"_s);
        c.recentFiles = QList<QUrl>{ other };
        // A folder in the file's place fails for root, too.
        QVERIFY(QDir().mkdir(world.path(u"taken.gp"_s)));
        for (const QString &name : { u"taken.gp"_s, u"missing/folder/x.gp"_s }) {
            c.conversionError = std::nullopt;
            world.dialogs->fileToSave = QUrl::fromLocalFile(world.path(name));
            c.handle(answer(u"AAAA"_s));
            world.letTimePass();
            QVERIFY(c.conversionError.value());
            QVERIFY(c.conversionError.value()->startsWith("Could not save: "_L1));
            QVERIFY(c.conversionError.value()->size() > 16);
            QCOMPARE(c.recentFiles.value(), QList<QUrl>{ other });
        }
    }

    void aWriteThatBreaksOffLeavesTheOldFile()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        const QUrl old = world.file(u"old.gp"_s, "the old file");
        world.dialogs->fileToSave = old;
        {
            const FullDisk disk(1000);
            c.handle(answer(QString::fromLatin1(QByteArray(100000, 'x').toBase64())));
            world.letTimePass();
        }
        QVERIFY(c.conversionError.value());
        QVERIFY(c.conversionError.value()->startsWith("Could not save: "_L1));
        QCOMPARE(contents(old.toLocalFile()), QByteArray("the old file"));
        QVERIFY(c.recentFiles.value().isEmpty());
    }

    void aShortFileOnAFullDiskLeavesTheOldFile()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        // Fits into a buffer, so that nothing goes wrong before the file is closed.
        const QByteArray old(3000, 'o');
        const QUrl target = world.file(u"old.gp"_s, old);
        world.dialogs->fileToSave = target;
        {
            const FullDisk disk(1000);
            c.handle(answer(QString::fromLatin1(QByteArray(2000, 'x').toBase64())));
            world.letTimePass();
        }
        QVERIFY(c.conversionError.value());
        QVERIFY(c.conversionError.value()->startsWith("Could not save: "_L1));
        QCOMPARE(contents(target.toLocalFile()), old);
        QCOMPARE(QDir(world.path(u"."_s)).entryList({ u".*save*"_s, u"old.gp?*"_s }, QDir::Files | QDir::Hidden),
            QStringList());
        QVERIFY(c.recentFiles.value().isEmpty());
    }

    void fileNames_data()
    {
        QTest::addColumn<QString>("proposed");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << u"Blues in A.gp"_s << u"Blues in A.gp"_s;
        QTest::newRow("slash") << u"AC/DC - Live.gp"_s << u"AC-DC - Live.gp"_s;
        QTest::newRow("backslash") << u"a\\b.gp"_s << u"a\\b.gp"_s;
        QTest::newRow("leading points") << u"...And so on.gp"_s << u"...And so on.gp"_s;
        QTest::newRow("line break") << u"a\nb.gp"_s << u"a b.gp"_s;
        QTest::newRow("other scripts") << u"Шторм 嵐.gp"_s << u"Шторм 嵐.gp"_s;
    }

    void fileNames()
    {
        QFETCH(QString, proposed);
        QTEST(FileDialogs::fileNameFor(proposed), "name");
    }

    void aPairOfSurrogatesIsNotCutInTwo()
    {
        for (int before = 0; before < 4; ++before) {
            const QString name
                = FileDialogs::fileNameFor(QString(before, u'a') + QString(u"𝄞"_s).repeated(100) + u".gp"_s);
            QVERIFY(name.isValidUtf16());
            QVERIFY(name.toUtf8().size() <= 255 && name.toUtf8().size() > 248);
            QVERIFY(name.endsWith(u"𝄞.gp"_s));
        }
    }

    void aNameAsLongAsABookIsCutAtOnce()
    {
        QElapsedTimer timer;
        timer.start();
        for (int before = 0; before < 2; ++before) {
            const QString name
                = FileDialogs::fileNameFor(QString(250 + before, u'a') + QString(u"𝄞"_s).repeated(500'000) + u".gp"_s);
            QCOMPARE(name, QString(250 + before, u'a') + u".gp"_s);
        }
        // Letter by letter it takes hours.
        QVERIFY(timer.elapsed() < 10'000);
    }

    void aVeryLongNameIsCutBeforeItsExtension()
    {
        const QString name = FileDialogs::fileNameFor(QString(400, u'ж') + u".gp"_s);
        QVERIFY(name.toUtf8().size() <= 255);
        QVERIFY(name.toUtf8().size() >= 250);
        QVERIFY(name.endsWith(u"ж.gp"_s));
    }
};

QTEST_GUILESS_MAIN(TestExport)
#include "test_export.moc"
