#include "app/WindowMemory.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

class TestWindowMemory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsWrittenIsRead()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"a/b/window.json"_s);
        QVERIFY(!WindowMemory::read(path));
        const WindowMemory::Place place{ { -20, 40, 900, 600 }, true, 260, true, true };
        WindowMemory::write(path, place);
        QCOMPARE(WindowMemory::read(path), place);
    }

    void whatCannotBeUnderstoodIsNothing()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"window.json"_s);
        for (const QByteArray &text : { QByteArray(), QByteArray("{"), QByteArray("[]"), QByteArray("{\"x\": 5}"),
                 QByteArray(R"({"x": 0, "y": 0, "width": -5, "height": 600})"),
                 QByteArray(R"({"x": 0, "y": 0, "width": 900, "height": 600})").leftJustified(100000) }) {
            QFile file(path);
            QVERIFY(file.open(QIODevice::WriteOnly));
            file.write(text);
            file.close();
            QVERIFY2(!WindowMemory::read(path), text.left(60).constData());
        }
    }

    void aPipeInItsPlaceKeepsNobodyWaiting()
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(u"window.json"_s);
        QCOMPARE(::mkfifo(QFile::encodeName(path).constData(), 0600), 0);
        QVERIFY(!WindowMemory::read(path));
    }

    void aFolderThatCannotBeWrittenIsNoMatter()
    {
        WindowMemory::write(u"/proc/none/window.json"_s, { { 0, 0, 800, 600 }, false, 220 });
        QVERIFY(!QFileInfo::exists(u"/proc/none"_s));
    }

    void theFileIsWhereSuchThingsAreKept()
    {
        qputenv("XDG_STATE_HOME", "/state");
        QCOMPARE(WindowMemory::userFilePath(), u"/state/quaverly/window.json"_s);
        qputenv("XDG_STATE_HOME", "relative");
        const QString usual = QString::fromLocal8Bit(qgetenv("HOME")) + u"/.local/state/quaverly/window.json"_s;
        QCOMPARE(WindowMemory::userFilePath(), usual);
        qunsetenv("XDG_STATE_HOME");
        QCOMPARE(WindowMemory::userFilePath(), usual);
    }

    void windowsArePulledOntoAScreen_data()
    {
        QTest::addColumn<QRect>("remembered");
        QTest::addColumn<QRect>("placed");
        QTest::newRow("on the first") << QRect(100, 100, 800, 600) << QRect(100, 100, 800, 600);
        QTest::newRow("on the second") << QRect(2000, 100, 800, 600) << QRect(2000, 100, 800, 600);
        QTest::newRow("over the right edge") << QRect(2800, 100, 800, 600) << QRect(2400, 100, 800, 600);
        QTest::newRow("on a screen that is gone") << QRect(-3000, 100, 800, 600) << QRect(0, 100, 800, 600);
        QTest::newRow("above") << QRect(100, -300, 800, 600) << QRect(100, 70, 800, 600);
        QTest::newRow("below") << QRect(100, 900, 800, 600) << QRect(100, 480, 800, 600);
        QTest::newRow("too large") << QRect(50, 50, 5000, 5000) << QRect(0, 30, 1920, 1050);
    }

    void windowsArePulledOntoAScreen()
    {
        QFETCH(QRect, remembered);
        QFETCH(QRect, placed);
        // The first has a panel at its top.
        const QList<QRect> screens{ { 0, 30, 1920, 1050 }, { 1920, 0, 1280, 1024 } };
        QCOMPARE(WindowMemory::pulledIn(remembered, screens), placed);
        QCOMPARE(WindowMemory::pulledIn(remembered, {}), remembered);
    }
};

QTEST_GUILESS_MAIN(TestWindowMemory)
#include "test_window_memory.moc"
