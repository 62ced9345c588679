#include "controller/AlphaTabController.h"
#include "tests/support/TestSurroundings.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Qt::StringLiterals;

class TestRecentFiles final : public QObject {
    Q_OBJECT

private:
    static QStringList names(const AlphaTabController &controller)
    {
        QStringList result;
        for (const QUrl &url : controller.recentFiles.value())
            result << url.fileName();
        return result;
    }

private Q_SLOTS:
    void nineFilesLeaveTheLastEight()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle({ { u"type"_s, u"ready"_s } });
        for (int i = 1; i <= 9; ++i)
            c.load(world.file(u"%1.gp"_s.arg(i)));
        QCOMPARE(names(c),
            (QStringList{ u"9.gp"_s, u"8.gp"_s, u"7.gp"_s, u"6.gp"_s, u"5.gp"_s, u"4.gp"_s, u"3.gp"_s, u"2.gp"_s }));
        c.load(world.file(u"5.gp"_s));
        QCOMPARE(names(c),
            (QStringList{ u"5.gp"_s, u"9.gp"_s, u"8.gp"_s, u"7.gp"_s, u"6.gp"_s, u"4.gp"_s, u"3.gp"_s, u"2.gp"_s }));
        const AlphaTabController next(world.make());
        QCOMPARE(next.recentFiles.value(), c.recentFiles.value());
    }

    void pathsDifferByCase()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle({ { u"type"_s, u"ready"_s } });
        c.load(world.file(u"a.gp"_s));
        c.load(world.file(u"A.gp"_s));
        QCOMPARE(names(c), (QStringList{ u"A.gp"_s, u"a.gp"_s }));
    }

    void plainPathsAreStored()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle({ { u"type"_s, u"ready"_s } });
        const QUrl url = world.file(u"Ünï 100% #1.gp"_s);
        c.load(url);
        QCOMPARE(world.defaults()->textList(u"recentFiles"_s), QStringList{ world.path(u"Ünï 100% #1.gp"_s) });
        const AlphaTabController next(world.make());
        QCOMPARE(next.recentFiles.value(), QList<QUrl>{ url });
    }

    void aVanishedFileIsHiddenButNotForgotten()
    {
        TestSurroundings world;
        QStringList paths;
        for (const QString &name : { u"a.gp"_s, u"b.gp"_s, u"c.gp"_s })
            paths << world.file(name).toLocalFile();
        world.defaults()->setTextList(u"recentFiles"_s, paths);
        QVERIFY(QFile::remove(paths.at(1)));
        {
            const AlphaTabController c(world.make());
            QCOMPARE(names(c), (QStringList{ u"a.gp"_s, u"c.gp"_s }));
            QCOMPARE(world.defaults()->textList(u"recentFiles"_s), paths);
        }
        world.file(u"b.gp"_s);
        AlphaTabController back(world.make());
        QCOMPARE(names(back), (QStringList{ u"a.gp"_s, u"b.gp"_s, u"c.gp"_s }));
    }

    void aDiskThatDoesNotAnswerKeepsNobodyWaiting()
    {
        TestSurroundings world;
        QStringList paths;
        for (int i = 1; i <= 9; ++i)
            paths << world.path(u"%1.gp"_s.arg(i));
        world.defaults()->setTextList(u"recentFiles"_s, paths);
        QList<std::function<void()>> asked;
        world.inBackground = [&asked](std::function<void()> work) { asked << std::move(work); };
        {
            const AlphaTabController c(world.make());
            QCOMPARE(asked.size(), 1);
            QCOMPARE(names(c).size(), 8);
            QCOMPARE(names(c).constFirst(), u"1.gp"_s);
            QCOMPARE(world.defaults()->textList(u"recentFiles"_s), paths);
        }
        // The answer may come when nobody is there any more.
        asked.constFirst()();
    }

    void aFolderCountsAsExisting()
    {
        TestSurroundings world;
        QVERIFY(QDir().mkdir(world.path(u"folder"_s)));
        world.defaults()->setTextList(u"recentFiles"_s, { world.path(u"folder"_s) });
        const AlphaTabController c(world.make());
        QCOMPARE(names(c), QStringList{ u"folder"_s });
    }

    void aStoredValueOfAnotherTypeIsNoList()
    {
        TestSurroundings world;
        world.file(u"defaults.json"_s, R"({"recentFiles": "a.gp"})");
        const AlphaTabController c(world.make());
        QVERIFY(c.recentFiles.value().isEmpty());
    }

    void clearing()
    {
        TestSurroundings world;
        AlphaTabController c(world.make());
        c.handle({ { u"type"_s, u"ready"_s } });
        c.load(world.file(u"a.gp"_s));
        c.clearRecents();
        QVERIFY(c.recentFiles.value().isEmpty());
        QCOMPARE(world.defaults()->textList(u"recentFiles"_s), QStringList());
        const AlphaTabController next(world.make());
        QVERIFY(next.recentFiles.value().isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestRecentFiles)
#include "test_recent_files.moc"
