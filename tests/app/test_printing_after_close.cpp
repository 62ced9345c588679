#include "app/PrintingAfterClose.h"
#include "app/QuaverlyApp.h"
#include "controller/AlphaTabController.h"
#include "desktop/Launch.h"
#include "engine_host/process/SystemLog.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QApplication>
#include <QFile>
#include <QMainWindow>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

class TestPrintingAfterClose final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;

    QString path() const { return m_world->path(u"song.pdf"_s); }

    QByteArray file() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// Runs the application as the program does: until it quits of its own accord.
    static void run(std::function<void()> beginning)
    {
        QTimer::singleShot(0, qApp, std::move(beginning));
        QCOMPARE(QCoreApplication::exec(), 0);
    }

    /// Does it two turns of the event loop later: a quit that is under way ends the loop before.
    static void later(std::function<void()> then)
    {
        QTimer::singleShot(0, qApp, [then = std::move(then)] { QTimer::singleShot(0, qApp, then); });
    }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        m_controller->handle({ { u"type"_s, u"score"_s }, { u"title"_s, u"Song"_s } });
        m_world->dialogs->printTarget = PrintTarget{ .layout = {}, .filePath = path(), .printer = nullptr };
    }

    void aClosedWindowEndsTheProgram()
    {
        QuaverlyApp app(*m_controller);
        bool closed = false;
        run([&] { closed = app.window().close(); });
        QVERIFY(closed);
    }

    void thePdfIsWrittenBehindTheClosedWindow()
    {
        QuaverlyApp app(*m_controller);
        bool wasVisible = true;
        run([&] {
            m_controller->print();
            app.window().close();
            later([&] {
                wasVisible = app.window().isVisible();
                m_world->engine->printed({ .succeeded = true, .pdf = "%PDF" });
            });
        });
        QVERIFY(!wasVisible);
        QCOMPARE(file(), QByteArray("%PDF"));
    }

    void aFailureBringsTheWindowBack()
    {
        QuaverlyApp app(*m_controller);
        QString sentence;
        bool wasVisible = false;
        run([&] {
            m_controller->print();
            app.window().close();
            later([&] {
                m_world->engine->printed({});
                later([&] {
                    auto *alert = app.window().findChild<QMessageBox *>();
                    sentence = alert && alert->isVisible() ? alert->text() : QString();
                    wasVisible = app.window().isVisible();
                    if (alert)
                        alert->close();
                    app.window().close();
                });
            });
        });
        QCOMPARE(sentence, u"The score could not be printed."_s);
        QVERIFY(wasVisible);
    }

    void theMusicStopsWithTheWindow()
    {
        QuaverlyApp app(*m_controller);
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        report(m_controller->isPlaying, true);
        m_world->engine->take();
        QStringList calls;
        run([&] {
            m_controller->print();
            app.window().close();
            calls = m_world->engine->take();
            m_world->engine->printed({ .succeeded = true, .pdf = "%PDF" });
        });
        QCOMPARE(calls, QStringList{ u"window.qv.playPause()"_s });
    }

    void theProgramRunsOnWhereTheWindowIsBack()
    {
        QuaverlyApp app(*m_controller);
        bool ran = false;
        run([&] {
            m_controller->print();
            app.window().close();
            later([&] {
                app.launchAgain({});
                m_world->engine->printed({ .succeeded = true, .pdf = "%PDF" });
                later([&] {
                    ran = app.window().isVisible();
                    app.window().close();
                });
            });
        });
        QVERIFY(ran);
    }

    void whatIsNeverPrintedIsGivenUp()
    {
        QMainWindow window;
        window.show();
        const PrintingAfterClose printing(*m_controller, window, 1);
        run([&] {
            m_controller->print();
            window.close();
        });
        QVERIFY(file().isEmpty());
        QVERIFY(SystemLog::lastLines().join(u'\n').contains("was not printed in time"_L1));
    }
};

QTEST_MAIN(TestPrintingAfterClose)
#include "test_printing_after_close.moc"
