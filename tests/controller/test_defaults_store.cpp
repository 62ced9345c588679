#include "controller/DefaultsStore.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

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
};

QTEST_GUILESS_MAIN(TestDefaultsStore)
#include "test_defaults_store.moc"
