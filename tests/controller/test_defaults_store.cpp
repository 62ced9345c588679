#include "controller/DefaultsStore.h"
#include "tests/support/FullDisk.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

/// Whom files may be kept from: root, as whom tests may run, reads all of them.
class AsAnOrdinaryUser final {
    Q_DISABLE_COPY_MOVE(AsAnOrdinaryUser)

public:
    /// @param folder becomes the user's with all that is in it
    explicit AsAnOrdinaryUser(const QString &folder)
    {
        if (m_before != 0)
            return;
        QStringList paths{ folder };
        for (const QString &name : QDir(folder).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
            paths << folder + u'/' + name;
        for (const QString &path : std::as_const(paths))
            m_done = m_done && ::chown(QFile::encodeName(path).constData(), nobody, nobody) == 0;
        m_done = m_done && ::seteuid(nobody) == 0;
    }
    ~AsAnOrdinaryUser()
    {
        if (m_before == 0 && ::seteuid(0) != 0)
            qFatal("root is not root any more");
    }

    bool isOne() const { return m_done; }

private:
    static constexpr uid_t nobody = 65534;
    const uid_t m_before = ::geteuid();
    bool m_done = true;
};

} // namespace

class TestDefaultsStore final : public QObject {
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QStringList m_log;

    QString path() const { return m_folder.filePath(QString::fromLatin1(QTest::currentTestFunction()) + u".json"_s); }
    std::unique_ptr<DefaultsStore> store()
    {
        return std::make_unique<DefaultsStore>(path(), [this](const QString &line) { m_log << line; });
    }
    void put(const QByteArray &bytes)
    {
        QFile file(path());
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray contents() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }

private Q_SLOTS:
    void init() { m_log.clear(); }

    void everyTypeSurvivesARestart()
    {
        {
            const auto first = store();
            first->setInteger(u"i"_s, 3);
            first->setReal(u"r"_s, 0.1);
            first->setReal(u"whole"_s, 1.0);
            first->setBoolean(u"b"_s, false);
            first->setText(u"t"_s, u"Ünïcödé 谱"_s);
            first->setTextList(u"l"_s, { u"/a b"_s, u"/c"_s });
            first->setTextList(u"empty"_s, {});
        }
        const auto second = store();
        QCOMPARE(second->integer(u"i"_s), 3);
        QCOMPARE(second->real(u"r"_s), 0.1);
        QCOMPARE(second->real(u"whole"_s), 1.0);
        QCOMPARE(second->boolean(u"b"_s), false);
        QCOMPARE(second->text(u"t"_s), u"Ünïcödé 谱"_s);
        QCOMPARE(second->textList(u"l"_s), (QStringList{ u"/a b"_s, u"/c"_s }));
        QCOMPARE(second->textList(u"empty"_s), QStringList());
        QVERIFY(m_log.isEmpty());
    }

    void otherTypesAndAbsentKeysGiveNothing()
    {
        put(R"({"text": "2", "half": 2.5, "yes": true, "mixed": ["a", 1], "null": null})");
        const auto s = store();
        QVERIFY(!s->integer(u"text"_s));
        QVERIFY(!s->integer(u"half"_s));
        QVERIFY(!s->integer(u"yes"_s));
        QVERIFY(!s->real(u"text"_s));
        QVERIFY(!s->boolean(u"half"_s));
        QVERIFY(!s->text(u"yes"_s));
        QVERIFY(!s->textList(u"mixed"_s));
        QVERIFY(!s->textList(u"text"_s));
        QVERIFY(!s->text(u"null"_s));
        QVERIFY(!s->integer(u"absent"_s));
    }

    void anAssignmentIsOnDiskAtOnceAndLeavesNoOtherFile()
    {
        const auto s = store();
        s->setText(u"k"_s, u"v"_s);
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().contains("\"k\": \"v\""));
        QCOMPARE(QDir(m_folder.path()).entryList({ QFileInfo(path()).fileName() + u'*' }).size(), 1);
    }

    void keysItDoesNotKnowAreKept()
    {
        put(R"({"later": {"deep": [1, null]}})");
        store()->setInteger(u"i"_s, 1);
        QFile file(path());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().simplified().contains("\"deep\": [ 1, null ]"));
    }

    void aDamagedFileIsSetAside_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("cut off") << QByteArray("{\"recentFiles\": [\"/a\"");
        QTest::newRow("not an object") << QByteArray("[1, 2]");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("noise") << QByteArray("\0\xff\xfe", 3);
    }

    void aDamagedFileIsSetAside()
    {
        QFETCH(QByteArray, bytes);
        put(bytes);
        const auto s = store();
        QVERIFY(!s->textList(u"recentFiles"_s));
        QCOMPARE(m_log.size(), 1);
        QVERIFY(m_log.constFirst().startsWith("[Quaverly] damaged settings file "_L1));
        QVERIFY(!QFile::exists(path()));
        QFile aside(path() + u".damaged"_s);
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), bytes);
        QVERIFY(aside.remove());
        s->setInteger(u"i"_s, 1);
        QCOMPARE(store()->integer(u"i"_s), 1);
    }

    void aFileTooLargeForSettingsIsSetAside()
    {
        put("{\"recentFiles\": [\"" + QByteArray(DefaultsStore::largestFile, 'a') + "\"]}");
        const auto s = store();
        QVERIFY(!s->textList(u"recentFiles"_s));
        QVERIFY(m_log.size() == 1 && m_log.constFirst().contains("too large"_L1));
        s->setInteger(u"i"_s, 1);
        QVERIFY(contents().size() < 100);
        QVERIFY(QFile(path() + u".damaged"_s).size() > DefaultsStore::largestFile);
    }

    void aPipeInItsPlaceKeepsNobodyWaiting()
    {
        QCOMPARE(::mkfifo(QFile::encodeName(path()).constData(), 0600), 0);
        const auto s = store();
        QVERIFY(m_log.isEmpty());
        s->setInteger(u"i"_s, 1);
        QCOMPARE(s->integer(u"i"_s), 1);
        QVERIFY(m_log.size() == 1 && m_log.constFirst().startsWith("[Quaverly] failed to write the settings "_L1));
    }

    void aFileThatIsDamagedMeanwhileIsSetAside()
    {
        const auto s = store();
        s->setInteger(u"i"_s, 1);
        put("somebody's own words");
        s->setInteger(u"j"_s, 2);
        QFile aside(path() + u".damaged"_s);
        QVERIFY(aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), QByteArray("somebody's own words"));
        QCOMPARE(store()->integer(u"i"_s), 1);
        QCOMPARE(store()->integer(u"j"_s), 2);
    }

    void aFileThatCannotBeReadIsNotOverwritten()
    {
        const QByteArray theirs = R"({"recentFiles": ["/a"]})";
        put(theirs);
        QVERIFY(QFile::setPermissions(path(), {}));
        const AsAnOrdinaryUser user(m_folder.path());
        QVERIFY(user.isOne());
        const auto s = store();
        QVERIFY(m_log.size() == 1 && m_log.constFirst().startsWith("[Quaverly] failed to read the settings "_L1));
        QVERIFY(QFile::exists(path()));
        s->setInteger(u"i"_s, 1);
        QCOMPARE(store()->integer(u"i"_s), 1);
        QFile aside(path() + u".damaged"_s);
        QVERIFY(aside.setPermissions(QFileDevice::ReadOwner) && aside.open(QIODevice::ReadOnly));
        QCOMPARE(aside.readAll(), theirs);
    }

    void aSecondDamagedFileDoesNotReplaceTheFirst()
    {
        put("one");
        store();
        put("two");
        store();
        QVERIFY(QFile::exists(path() + u".damaged"_s));
        QVERIFY(QFile::exists(path() + u".damaged-2"_s));
    }

    void aFolderThatCannotBeMadeIsLogged()
    {
        put("{}");
        DefaultsStore s(path() + u"/below/defaults.json"_s, [this](const QString &line) { m_log << line; });
        s.setInteger(u"i"_s, 1);
        QCOMPARE(s.integer(u"i"_s), 1); // the run goes on with the value
        QCOMPARE(m_log.size(), 1);
        QVERIFY(m_log.constFirst().startsWith("[Quaverly] failed to write the settings "_L1));
    }

    void aFullDiskLeavesTheOldFile()
    {
        const auto s = store();
        s->setText(u"t"_s, QString(500, u'a'));
        const QByteArray before = contents();
        {
            const FullDisk disk(100);
            s->setText(u"t"_s, QString(600, u'b'));
        }
        QCOMPARE(contents(), before);
        QCOMPARE(m_log.size(), 1);
        QVERIFY(m_log[0].startsWith(u"[Quaverly] failed to write the settings "_s + path() + u": "_s));
        s->setText(u"t"_s, u"c"_s);
        QCOMPARE(store()->text(u"t"_s), u"c"_s);
    }

    void whatTheDiskDidNotTakeIsSavedLater()
    {
        const QString key = u"list"_s;
        store()->setTextList(key, { u"a"_s });
        const auto s = store();
        {
            const FullDisk disk(10);
            s->setTextList(key, { u"b"_s, u"a"_s });
            s->setTextList(key, { u"c"_s, u"b"_s, u"a"_s });
            s->setInteger(u"i"_s, 1);
        }
        QCOMPARE(m_log.size(), 1); // a failure that lasts
        const auto other = store();
        QCOMPARE(other->textList(key), QStringList{ u"a"_s });
        other->setTextList(key, { u"x"_s, u"a"_s });
        s->setBoolean(u"b"_s, true);
        const auto next = store();
        QCOMPARE(next->integer(u"i"_s), 1);
        QCOMPARE(next->boolean(u"b"_s), true);
        QCOMPARE(next->textList(key), (QStringList{ u"c"_s, u"x"_s, u"b"_s, u"a"_s }));
    }

    void whatTheDiskDidNotTakeIsSavedWhenAskedFor()
    {
        QStringList told;
        const auto s = store();
        s->setSaveObserver([&](const QString &file, const std::optional<QString> &reason) {
            QCOMPARE(file, path());
            told << reason.value_or(u"saved"_s);
        });
        s->saveWhatIsUnsaved();
        QVERIFY(!QFile::exists(path()));
        {
            const FullDisk disk(10);
            s->setText(u"t"_s, u"kept"_s);
        }
        QVERIFY(told.size() == 1 && told[0] != u"saved"_s);
        s->saveWhatIsUnsaved();
        s->saveWhatIsUnsaved();
        QVERIFY(told.size() == 2 && told[1] == u"saved"_s);
        QCOMPARE(store()->text(u"t"_s), u"kept"_s);
    }

    void twoLaunchesKeepEachOthersSettings()
    {
        store()->setReal(u"volume"_s, 0.5);
        const auto one = store();
        const auto other = store();
        one->setReal(u"volume"_s, 0.75);
        other->setText(u"sound"_s, u"beep"_s);
        one->setInteger(u"pages"_s, 3);
        const auto next = store();
        QCOMPARE(next->real(u"volume"_s), 0.75);
        QCOMPARE(next->text(u"sound"_s), u"beep"_s);
        QCOMPARE(next->integer(u"pages"_s), 3);
    }

    void twoLaunchesKeepEachOthersListEntries()
    {
        const QString key = u"list"_s;
        const auto one = store();
        const auto other = store();
        one->setTextList(key, { u"a"_s });
        other->setTextList(key, { u"b"_s });
        QCOMPARE(store()->textList(key), (QStringList{ u"b"_s, u"a"_s }));
        one->setTextList(key, { u"c"_s, u"a"_s });
        QCOMPARE(store()->textList(key), (QStringList{ u"c"_s, u"b"_s, u"a"_s }));
        // Removed by one of them: gone, also when the other one, who still has it, writes.
        other->setTextList(key, {});
        QCOMPARE(store()->textList(key), QStringList());
        one->setTextList(key, { u"d"_s, u"c"_s, u"a"_s });
        QCOMPARE(store()->textList(key), (QStringList{ u"d"_s }));
    }

    void whatAKilledProgramLeftIsSweptAway()
    {
        const pid_t dead = ::fork();
        if (dead == 0)
            ::_exit(0);
        ::waitpid(dead, nullptr, 0);
        const auto left = [this](pid_t program) {
            const QString name = m_folder.filePath(u".quaverly-save-"_s + QString::number(program) + u"-1"_s);
            QFile file(name);
            return file.open(QIODevice::WriteOnly) ? name : QString();
        };
        const QString orphan = left(dead);
        const QString busy = left(::getpid());
        store();
        QVERIFY(!QFile::exists(orphan));
        QVERIFY(QFile::remove(busy));
    }
};

QTEST_GUILESS_MAIN(TestDefaultsStore)
#include "test_defaults_store.moc"
