#include "app/QuaverlyApp.h"
#include "app/WindowActivation.h"
#include "controller/AlphaTabController.h"
#include "desktop/Launch.h"
#include "pdf/conversion/PDFDocument.h"
#include "tests/support/TestSurroundings.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPdfWriter>
#include <QTest>

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
        m_controller->hasScore = true;
        QVERIFY(action->isEnabled());
        {
            QPdfWriter writer(m_world->path(u"x.pdf"_s));
            QPainter painter(&writer);
        }
        m_controller->pdfDocument = PDFDocument::open(m_world->path(u"x.pdf"_s));
        QVERIFY(m_controller->pdfDocument.value());
        QVERIFY(!action->isEnabled());
        m_controller->pdfDocument = nullptr;
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
        m_controller->hasScore = true;
        QVERIFY(action->isEnabled());
        action->trigger();
        action->trigger();
        QCOMPARE(m_world->engine->take(), (QStringList{ u"window.qv.playPause()"_s, u"window.qv.playPause()"_s }));
        QCOMPARE(action->text(), u"Play"_s);
        m_controller->isPlaying = true;
        QCOMPARE(action->text(), u"Pause"_s);
        m_controller->isPlaying = false;
        QCOMPARE(action->text(), u"Play"_s);
    }

    void thereIsNoNewCommand() { QVERIFY(!command(u"File"_s, u"New"_s)); }

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
