#include "controller/KeyWindow.h"
#include "controller/Surroundings.h"

#include <QDialog>
#include <QMainWindow>
#include <QTest>

using namespace Qt::StringLiterals;

/// The real things, as far as they can be seen without a page.
class TestSystemSurroundings final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theirPlaces()
    {
        const Surroundings real = Surroundings::system();
        QCOMPARE(real.packagedAudiveris, u"/opt/audiveris/bin/Audiveris"_s);
        QCOMPARE(real.temporaryFolder, u"/tmp"_s);
    }

    void theTitleIsTheMainWindows()
    {
        const Surroundings real = Surroundings::system();
        real.setMainWindowTitle(u"nobody is there"_s);
        QMainWindow window;
        QDialog panel(&window);
        panel.setWindowTitle(u"Open"_s);
        window.show();
        panel.show();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        real.setMainWindowTitle(u"Take [*] 2"_s);
        QCOMPARE(window.windowTitle(), u"Take [*][*] 2"_s);
        QCOMPARE(panel.windowTitle(), u"Open"_s);
    }

    void theKeyWindowHasTheFocus()
    {
        QVERIFY(!KeyWindow::find());
        const QMainWindow hidden;
        QMainWindow window;
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        QCOMPARE(KeyWindow::find(), &window);
        QDialog panel(&window);
        panel.show();
        panel.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &panel);
        QCOMPARE(KeyWindow::find(), &panel);
    }

    void withoutTheFocusItIsNoPanel()
    {
        QWidget panel(nullptr, Qt::Tool);
        panel.setAttribute(Qt::WA_ShowWithoutActivating);
        panel.show();
        QVERIFY(!QApplication::activeWindow());
        QVERIFY(!KeyWindow::find());
        QMainWindow window;
        window.setAttribute(Qt::WA_ShowWithoutActivating);
        window.show();
        QCOMPARE(KeyWindow::find(), &window);
    }
};

QTEST_MAIN(TestSystemSurroundings)
#include "test_surroundings.moc"
