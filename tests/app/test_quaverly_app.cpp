#include "app/AboutPanel.h"
#include "app/GuideWindow.h"
#include "app/QuaverlyApp.h"
#include "app/WindowActivation.h"
#include "app/WindowMemory.h"
#include "app/menus/ShortcutsWindow.h"
#include "controller/AlphaTabController.h"
#include "design/Popover.h"
#include "desktop/Launch.h"
#include "engine_host/process/SystemLog.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"
#include "views/ContentView.h"
#include "views/Toolbar.h"
#include "views/TrackSidebar.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QPdfWriter>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QShortcut>
#include <QSysInfo>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>

using namespace Qt::StringLiterals;

class TestQuaverlyApp final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<QuaverlyApp> m_app;

    QAction *command(const QString &menuTitle, const QString &title) const
    {
        const QList<QAction *> menus = m_app->window().menuBar()->actions();
        for (const QAction *menu : menus) {
            if (menu->text().remove(u'&') != menuTitle)
                continue;
            const QList<QAction *> actions = menu->menu()->actions();
            for (QAction *action : actions) {
                if (action->text() == title)
                    return action;
            }
        }
        return nullptr;
    }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        m_app = std::make_unique<QuaverlyApp>(*m_controller);
        QVERIFY(QTest::qWaitForWindowExposed(&m_app->window()));
    }

    void cleanup()
    {
        m_app.reset();
        m_controller.reset();
    }

    void theWindowKeepsItsMinimumSize()
    {
        m_app->window().resize(100, 100);
        QCOMPARE(m_app->window().size(), QSize(760, 520));
        QCOMPARE(m_app->window().windowTitle(), u"Quaverly"_s);
    }

    void open()
    {
        QAction *action = command(u"File"_s, u"Open…"_s);
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(u"Ctrl+O"_s));
        QVERIFY(action->isEnabled());
        action->trigger();
        QCOMPARE(m_world->dialogs->opened, 1);
    }

    void exportIsForAScoreInSight()
    {
        QAction *action = command(u"File"_s, u"Export as Guitar Pro…"_s);
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(u"Ctrl+E"_s));
        QVERIFY(!action->isEnabled());
        report(m_controller->hasScore, true);
        QVERIFY(action->isEnabled());
        {
            QPdfWriter writer(m_world->path(u"x.pdf"_s));
            QPainter painter(&writer);
        }
        report(m_controller->pdfDocument, PDFDocument::open(m_world->path(u"x.pdf"_s)));
        QVERIFY(m_controller->pdfDocument.value());
        QVERIFY(!action->isEnabled());
        report(m_controller->pdfDocument, nullptr);
        QVERIFY(action->isEnabled());
        m_world->engine->take();
        action->trigger();
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.exportGp()"_s });
    }

    void playFollowsThePage()
    {
        QAction *action = command(u"View"_s, u"Play"_s);
        QVERIFY(action);
        QVERIFY(!action->isEnabled());
        QVERIFY(action->shortcut().isEmpty());
        report(m_controller->hasScore, true);
        QVERIFY(action->isEnabled());
        action->trigger();
        action->trigger();
        QCOMPARE(m_world->engine->take(), (QStringList{ u"window.qv.playPause()"_s, u"window.qv.playPause()"_s }));
        QCOMPARE(action->text(), u"Play"_s);
        report(m_controller->isPlaying, true);
        QCOMPARE(action->text(), u"Pause"_s);
        report(m_controller->isPlaying, false);
        QCOMPARE(action->text(), u"Play"_s);
    }

    void recentFilesOpen()
    {
        QAction *recent = command(u"File"_s, u"Open Recent"_s);
        QVERIFY(recent && recent->menu());
        QVERIFY(!recent->isEnabled());
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        QVERIFY(QDir(m_world->path({})).mkpath(u"more"_s));
        m_controller->recentFiles
            = { m_world->file(u"a & b.gp"_s, "x"), m_world->file(u"c.gp"_s, "y"), m_world->file(u"more/c.gp"_s, "z") };
        QVERIFY(recent->isEnabled());
        Q_EMIT recent->menu()->aboutToShow();
        QList<QAction *> entries = recent->menu()->actions();
        QCOMPARE(entries.size(), 5);
        QCOMPARE(entries[0]->text(), u"a && b.gp"_s);
        QCOMPARE(entries[0]->toolTip(), m_world->path(u"a & b.gp"_s));
        QVERIFY2(entries[1]->text().startsWith(u"c.gp – "_s), qPrintable(entries[1]->text()));
        QVERIFY(entries[1]->text() != entries[2]->text());
        m_world->engine->take();
        entries[0]->trigger();
        QTRY_COMPARE(m_world->engine->scripts, QStringList{ u"window.qv.loadBase64('eA==')"_s });
        QCOMPARE(entries[4]->text(), u"Clear"_s);
        entries[4]->trigger();
        QVERIFY(m_controller->recentFiles.value().isEmpty());
        QVERIFY(!recent->isEnabled());
        QCOMPARE(m_world->defaults()->textList(u"recentFiles"_s), QStringList());
    }

    void quitClosesTheWindow()
    {
        QAction *action = command(u"File"_s, u"Quit"_s);
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(u"Ctrl+Q"_s));
        action->trigger();
        QVERIFY(!m_app->window().isVisible());
    }

    void fullScreenAndBack()
    {
        QAction *action = command(u"View"_s, u"Full Screen"_s);
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(u"F11"_s));
        QVERIFY(!action->isChecked());
        const auto *content = qobject_cast<ContentView *>(m_app->window().centralWidget());
        const QWidget *toolbar = content->findChild<Toolbar *>();
        const QWidget *sidebar = content->findChild<TrackSidebar *>();
        const int width = content->sidebarWidth();
        action->trigger();
        QTRY_VERIFY(m_app->window().isFullScreen() && action->isChecked());
        QTRY_VERIFY(!toolbar->isVisible() && !sidebar->isVisible());
        // What is remembered of the window.
        QCOMPARE(content->sidebarWidth(), width);
        // The window manager's own command.
        m_app->window().showNormal();
        QTRY_VERIFY(!action->isChecked());
        QTRY_VERIFY(toolbar->isVisible() && sidebar->isVisible());
        QTRY_COMPARE(content->sidebarWidth(), width);
    }

    void aboutTellsVersionsAndLicences()
    {
        command(u"Help"_s, u"About Quaverly"_s)->trigger();
        const QPointer<AboutPanel> panel = m_app->window().findChild<AboutPanel *>();
        QVERIFY(panel && panel->isVisible());
        QStringList texts;
        for (const QLabel *label : panel->findChildren<QLabel *>())
            texts << label->text();
        for (const QString &name : { u"Quaverly"_s, u"alphaTab"_s, u"Qt"_s, u"Chromium"_s })
            QVERIFY2(texts.contains(name), qPrintable(name));
        QVERIFY(texts.contains(QString::fromLatin1(qVersion())));
        const QString licences = panel->findChild<QTextBrowser *>()->toPlainText();
        QVERIFY(licences.contains("MIT License"_L1));
        QVERIFY(licences.contains("Bravura"_L1));
        // Nothing is wider than the panel, but for the pixel that Qt's tables take.
        const auto *sideways = panel->findChild<QTextBrowser *>()->horizontalScrollBar();
        QVERIFY(!sideways->isVisible());
        QVERIFY2(sideways->maximum() <= 2, qPrintable(QString::number(sideways->maximum())));
        panel->reject();
        QTRY_VERIFY(!panel);
    }

    /// And not the passage, which a menu lets go of with the same key.
    void escapeClosesTheMetronomesPanel()
    {
        report(m_controller->hasScore, true);
        report(m_controller->endTime, 60000.0);
        m_world->engine->reports.reportLoopSpan(4000, 8000);
        for (auto *button : m_app->window().findChildren<QAbstractButton *>()) {
            if (button->accessibleName() == "Metronome & count-in"_L1)
                button->click();
        }
        const QPointer<Popover> panel = m_app->window().findChild<Popover *>();
        QVERIFY(panel && panel->isVisible());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_VERIFY(!panel);
        QCOMPARE(m_world->engine->keys, QStringList());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QCOMPARE(m_world->engine->keys, QStringList{ u"Esc"_s });
    }

    void aProblemIsReportedWithVersionsAndLog()
    {
        SystemLog::write(u"[Quaverly] failed to read x\ny"_s);
        QGuiApplication::clipboard()->clear();
        command(u"Help"_s, u"Report a Problem"_s)->trigger();
        const QString report = QGuiApplication::clipboard()->text();
        QVERIFY2(report.contains("\n[Quaverly] failed to read x y\n"_L1), qPrintable(report));
        QVERIFY(report.contains(u"Qt "_s + QString::fromLatin1(qVersion())));
        QVERIFY(report.contains(QSysInfo::kernelVersion()));
        auto *told = m_app->window().findChild<QMessageBox *>();
        QVERIFY(told && told->isVisible());
        told->close();
    }

    void theLogsLastLinesAreKept()
    {
        for (int i = 0; i < 60; ++i)
            SystemLog::write(u"line %1"_s.arg(i));
        QCOMPARE(SystemLog::lastLines().size(), 50);
        QCOMPARE(SystemLog::lastLines().constLast(), u"line 59"_s);
    }

    void theWindowComesBackWhereItWas()
    {
        const QString memory = m_world->path(u"state/window.json"_s);
        const QRect place(5, 50, 780, 540);
        m_app = std::make_unique<QuaverlyApp>(*m_controller, memory);
        m_app->window().setGeometry(place);
        auto *content = qobject_cast<ContentView *>(m_app->window().centralWidget());
        QCOMPARE(content->sidebarWidth(), 220);
        content->setSidebarWidth(300);
        m_app->window().close();
        m_app = std::make_unique<QuaverlyApp>(*m_controller, memory);
        QCOMPARE(m_app->window().geometry(), place);
        content = qobject_cast<ContentView *>(m_app->window().centralWidget());
        QTRY_COMPARE(content->sidebarWidth(), 300);
        QVERIFY(!m_app->window().isMaximized());
        m_app->window().showMaximized();
        QTRY_VERIFY(m_app->window().isMaximized());
        m_app->window().close();
        QCOMPARE(WindowMemory::read(memory)->geometry, place);
        m_app = std::make_unique<QuaverlyApp>(*m_controller, memory);
        QTRY_VERIFY(m_app->window().isMaximized());
        // The settings hold nothing of it.
        QVERIFY(!m_world->defaults()->integer(u"sidebarWidth"_s));
    }

    void theGuideOpensOffline()
    {
        QAction *action = command(u"Help"_s, u"Guide"_s);
        QVERIFY(action);
        QVERIFY(action->shortcut().isEmpty());
        action->trigger();
        action->trigger();
        QCOMPARE(m_app->window().findChildren<GuideWindow *>().size(), 1);
        auto *guide = m_app->window().findChild<GuideWindow *>();
        QVERIFY(guide->isVisible());
        // Each page that it leads to, and each picture, comes with the program.
        QStringList pages{ u"index.md"_s };
        for (qsizetype i = 0; i < pages.size(); ++i) {
            guide->setSource(QUrl(u"qrc:/guide/"_s + pages[i]));
            QVERIFY2(guide->toPlainText().size() > 1000, qPrintable(pages[i]));
            for (QTextBlock block = guide->document()->begin(); block.isValid(); block = block.next()) {
                for (auto part = block.begin(); !part.atEnd(); ++part) {
                    const QTextCharFormat format = part.fragment().charFormat();
                    if (format.isImageFormat()) {
                        const QUrl picture = guide->source().resolved(QUrl(format.toImageFormat().name()));
                        QVERIFY2(QFile::exists(u':' + picture.path()), qPrintable(picture.toString()));
                    }
                    const QString page = QUrl(format.anchorHref()).fileName();
                    if (page.endsWith(".md"_L1) && !pages.contains(page))
                        pages << page;
                }
            }
        }
        QCOMPARE(pages.size(), 2);
        guide->setSource(QUrl(u"qrc:/guide/index.md#keys"_s));
        QCOMPARE(guide->textCursor().block().text(), u"Keys"_s);
    }

    void aWindowOverASmallOneIsOnTheScreen()
    {
        m_app->window().setGeometry(0, 20, 760, 520);
        command(u"Help"_s, u"Keyboard Shortcuts"_s)->trigger();
        const QRect room = m_app->window().screen()->availableGeometry();
        const QRect place = m_app->window().findChild<ShortcutsWindow *>()->geometry();
        QVERIFY2(room.contains(place) && place.top() > room.top(), qPrintable(QDebug::toString(place)));
    }

    void theShortcutsAreThoseOfTheMenus()
    {
        QAction *action = command(u"Help"_s, u"Keyboard Shortcuts"_s);
        QVERIFY(action);
        QCOMPARE(action->shortcut(), QKeySequence(u"F1"_s));
        action->trigger();
        action->trigger();
        QCOMPARE(m_app->window().findChildren<ShortcutsWindow *>().size(), 1);
        const auto *shortcuts = m_app->window().findChild<ShortcutsWindow *>();
        QVERIFY(shortcuts->isVisible());
        const QString text = shortcuts->toPlainText();
        int items = 0;
        for (const QAction *item : m_app->window().findChildren<QAction *>()) {
            if (item->shortcut().isEmpty() || item->text().isEmpty())
                continue;
            ++items;
            const QString title = QString(item->text()).remove(u'&');
            QVERIFY2(text.contains(title), qPrintable(title));
            QVERIFY2(text.contains(item->shortcut().toString(QKeySequence::NativeText)), qPrintable(title));
        }
        QVERIFY(items > 30);
        QVERIFY(text.contains("Space"_L1));
        QVERIFY2(text.contains(u"1 … 9"_s) && text.contains(u"Alt+1 … Alt+9"_s), qPrintable(text));
    }

    void escapeClosesAWindowOfHelp_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("guide") << u"Guide"_s;
        QTest::newRow("shortcuts") << u"Keyboard Shortcuts"_s;
    }

    void escapeClosesAWindowOfHelp()
    {
        QFETCH(QString, title);
        command(u"Help"_s, title)->trigger();
        const auto windows = m_app->window().findChildren<QTextBrowser *>();
        QCOMPARE(windows.size(), 1);
        const QPointer<QTextBrowser> window = windows.constFirst();
        // The offscreen platform gives keys to the main window only.
        auto *escape = window->findChild<QShortcut *>();
        QVERIFY(escape);
        QCOMPARE(escape->key(), QKeySequence(Qt::Key_Escape));
        Q_EMIT escape->activated();
        QTRY_VERIFY(!window);
        QVERIFY(m_app->window().isVisible());
    }

    void thereIsNoNewCommand()
    {
        const auto actions = m_app->window().findChildren<QAction *>();
        QVERIFY(actions.size() > 30);
        for (const QAction *action : actions) {
            const QString title = QString(action->text()).remove(u'&');
            QVERIFY2(!title.startsWith("New"_L1), qPrintable(title));
            QVERIFY2(!action->shortcuts().contains(QKeySequence(u"Ctrl+N"_s)), qPrintable(title));
        }
    }

    void aSecondLaunchShowsTheWindowAndOpensTheFirstFile()
    {
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        m_world->engine->take();
        m_app->window().showMinimized();
        m_app->launchAgain({ { m_world->file(u"a.gp"_s, "x"), m_world->file(u"b.gp"_s, "y") }, u"shell_TIME5"_s });
        QVERIFY(!m_app->window().isMinimized());
        QTRY_VERIFY(m_app->window().isActiveWindow());
        QCOMPARE(m_world->engine->take(), QStringList{ u"window.qv.loadBase64('eA==')"_s });
        m_app->launchAgain({});
        QCOMPARE(m_world->engine->take(), QStringList());
    }

    void theLaunchersTokenHoldsTheTimeOfTheClick()
    {
        QCOMPARE(WindowActivation::launchTime(u"files/org.x.Y/12-0-host_TIME4294967290"_s), 4294967290U);
        QCOMPARE(WindowActivation::launchTime(u"files_TIME1_TIME7"_s), 7U);
        QCOMPARE(WindowActivation::launchTime(u"files_TIMEx"_s), 0U);
        QCOMPARE(WindowActivation::launchTime({}), 0U);
    }

    void makingTheWindowAgainLoadsNothingAgain()
    {
        QWidget *view = m_controller->webView();
        QVERIFY(view->isVisible());
        m_app = std::make_unique<QuaverlyApp>(*m_controller);
        QCOMPARE(m_controller->webView(), view);
        QTRY_VERIFY(view->isVisible());
        QCOMPARE(m_world->engine->loads.size(), 1);
    }
};

QTEST_MAIN(TestQuaverlyApp)
#include "test_quaverly_app.moc"
