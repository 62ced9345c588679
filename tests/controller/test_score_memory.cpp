#include "controller/ScoreMemory.h"
#include "tests/support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestScoreMemory final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QStringList m_log;
    int m_count = 0;

    /// A path of a file that is not there yet, in a folder that is not there yet.
    QString newPath() { return m_folder.filePath(u"%1/scores.json"_s.arg(++m_count)); }

    ScoreMemory open(const QString &path)
    {
        return { path, [this](const QString &line) { m_log << line; } };
    }

    static RememberedScore score(double tempo) { return { .tempoPercent = tempo }; }

private Q_SLOTS:
    void isOffAndEmptyAtFirstAndMakesNoFile()
    {
        const QString path = newPath();
        const ScoreMemory memory = open(path);
        QVERIFY(!memory.isOn());
        QVERIFY(!memory.recall(u"a"_s));
        QVERIFY(!QFileInfo::exists(QFileInfo(path).path()));
    }

    void whatTheDiskDidNotTakeIsSavedLater()
    {
        const QString path = newPath();
        ScoreMemory memory = open(path);
        QStringList told;
        memory.setSaveObserver([&](const QString &file, const std::optional<QString> &reason) {
            QCOMPARE(file, path);
            told << reason.value_or(u"saved"_s);
        });
        m_log.clear();
        {
            const FullDisk disk(5);
            memory.setOn(true);
            memory.remember(u"a"_s, score(50));
            memory.remember(u"b"_s, score(60));
        }
        QCOMPARE(m_log.size(), 1);
        m_log.clear();
        QVERIFY(memory.isOn());
        QCOMPARE(memory.recall(u"a"_s), score(50));
        QVERIFY(!open(path).isOn());
        memory.saveWhatIsUnsaved();
        memory.saveWhatIsUnsaved();
        QVERIFY(told.size() == 4 && told[2] != u"saved"_s && told[3] == u"saved"_s);
        const ScoreMemory next = open(path);
        QVERIFY(next.isOn());
        QCOMPARE(next.recall(u"a"_s), score(50));
        QCOMPARE(next.recall(u"b"_s), score(60));
    }

    void keepsEverythingForTheNextLaunch()
    {
        const QString path = newPath();
        const RememberedScore left{ .tempoPercent = 75.5,
            .zoom = 1.25,
            .horizontalLayout = true,
            .looping = true,
            .metronome = true,
            .countIn = true,
            .position = 61234.5,
            .range = MarkedRange{ 2, 960, 3, -1 },
            .tracks = { { .id = 0, .visible = false, .mute = true, .volume = 0.25 },
                { .id = 1, .solo = true, .volume = 0.5 } } };
        {
            ScoreMemory memory = open(path);
            memory.setOn(true);
            memory.remember(u"a"_s, left);
        }
        const ScoreMemory memory = open(path);
        QVERIFY(memory.isOn());
        QVERIFY(memory.recall(u"a"_s) == left);
        QVERIFY(!memory.recall(u"b"_s));
    }

    void aPipeInItsPlaceKeepsNobodyWaiting()
    {
        const QString path = newPath();
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        ScoreMemory memory = open(path);
        QVERIFY(!memory.isOn());
        m_log.clear();
        memory.setOn(true);
        QVERIFY(m_log.size() == 1 && m_log.takeFirst().startsWith("[Quaverly] failed to write "_L1));
    }

    void aFileTooLargeForItIsEmpty()
    {
        const QString path = newPath();
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write("{\"on\": true, \"other\": \"" + QByteArray(ScoreMemory::largestFile, 'a') + "\"}");
        }
        QVERIFY(!open(path).isOn());
        open(path).setOn(true);
        QVERIFY(open(path).isOn());
        QVERIFY(QFileInfo(path).size() < 100);
    }

    void twoProgramsKeepEachOthersScores()
    {
        const QString path = newPath();
        ScoreMemory one = open(path);
        ScoreMemory other = open(path);
        one.setOn(true);
        one.remember(u"a"_s, score(50));
        other.remember(u"b"_s, score(60));
        one.remember(u"c"_s, score(70));
        other.remember(u"a"_s, score(80));
        QVERIFY(one.isOn());
        QCOMPARE(one.recall(u"a"_s)->tempoPercent, 80.0);
        QCOMPARE(one.recall(u"b"_s)->tempoPercent, 60.0);
        QCOMPARE(other.recall(u"c"_s)->tempoPercent, 70.0);
    }

    void forgetsTheScoreThatWasLeftTheLongestAgo()
    {
        const QString path = newPath();
        ScoreMemory memory = open(path);
        for (int i = 0; i < ScoreMemory::mostScores; ++i) {
            memory.remember(QString::number(i), score(50));
            // Times are told apart by milliseconds.
            if (i < 3)
                QTest::qWait(3);
        }
        memory.remember(u"0"_s, score(60));
        memory.remember(u"new"_s, score(70));
        QVERIFY(!memory.recall(u"1"_s));
        for (const QString &kept : { u"0"_s, u"2"_s, u"499"_s, u"new"_s })
            QVERIFY2(memory.recall(kept), qPrintable(kept));
    }

    void aDamagedFileIsAsGoodAsNone_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("nothing") << QByteArray();
        QTest::newRow("cut short") << QByteArray("{\"on\":true,\"scores\":{\"a\":{\"tempo");
        QTest::newRow("no object") << QByteArray("[1,2]");
        QTest::newRow("other kinds") << QByteArray("{\"on\":\"yes\",\"scores\":[\"a\"]}");
        QTest::newRow("no score") << QByteArray("{\"scores\":{\"a\":7}}");
    }

    void aDamagedFileIsAsGoodAsNone()
    {
        QFETCH(const QByteArray, bytes);
        QFile file(m_folder.filePath(u"damaged.json"_s));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        file.close();
        ScoreMemory memory = open(file.fileName());
        QVERIFY(!memory.isOn());
        QVERIFY(!memory.recall(u"a"_s));
        memory.remember(u"a"_s, score(55));
        QCOMPARE(memory.recall(u"a"_s)->tempoPercent, 55.0);
    }

    void whatCannotBeIsPulledIntoItsRange()
    {
        const RememberedScore read = RememberedScore::fromJson({ { u"tempoPercent"_s, 1e9 }, { u"zoom"_s, -1 },
            { u"position"_s, -5 }, { u"looping"_s, u"yes"_s },
            { u"range"_s,
                QJsonObject{ { u"startBar"_s, 7 }, { u"startTick"_s, 0 }, { u"endBar"_s, 3 }, { u"endTick"_s, 1 } } },
            { u"tracks"_s, QJsonArray{ QJsonObject{ { u"volume"_s, 40 } }, 7 } } });
        QCOMPARE(read.tempoPercent, 200.0);
        QCOMPARE(read.zoom, 0.5);
        QCOMPARE(read.position, 0.0);
        QVERIFY(!read.looping);
        QVERIFY(!read.range);
        QCOMPARE(read.tracks.size(), 2);
        QCOMPARE(read.tracks[0].volume, 1.0);
        QCOMPARE(read.tracks[1].id, 1);
        QVERIFY(read.tracks[1].visible);
    }

    void keysAreTheContentsOwn()
    {
        // FIPS 180-2, "abc".
        QCOMPARE(ScoreMemory::keyFor("abc"), u"ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"_s);
    }

    void aFileThatCannotBeWrittenLeavesOneLine()
    {
        ScoreMemory memory = open(u"/proc/quaverly/scores.json"_s);
        m_log.clear();
        memory.remember(u"a"_s, score(50));
        QCOMPARE(m_log.size(), 1);
        QVERIFY2(m_log[0].contains("/proc/quaverly/scores.json"_L1), qPrintable(m_log[0]));
    }

    void withoutAFileNothingIsKept()
    {
        m_log.clear();
        ScoreMemory memory = open({});
        memory.setOn(true);
        memory.remember(u"a"_s, score(50));
        QVERIFY(!memory.isOn());
        QVERIFY(!memory.recall(u"a"_s));
        QVERIFY(m_log.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestScoreMemory)
#include "test_score_memory.moc"
