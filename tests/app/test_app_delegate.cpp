#include "app/AppDelegate.h"
#include "controller/AlphaTabController.h"
#include "tests/support/Report.h"
#include "tests/support/TestSurroundings.h"

#include <QFile>
#include <QFileDialog>
#include <QImage>
#include <QLineEdit>
#include <QMainWindow>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QStringList toggled{ u"window.qv.playPause()"_s };

/// Counts how often the space bar reaches a widget.
class KeyCount final : public QObject {
public:
    explicit KeyCount(QWidget *widget)
        : QObject(widget)
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject *, QEvent *event) override
    {
        const bool isPress = event->type() == QEvent::KeyPress;
        presses += isPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Space ? 1 : 0;
        return false;
    }

    int presses = 0;
};

} // namespace

class TestAppDelegate final : public QObject {
    Q_OBJECT

private:
    std::unique_ptr<TestSurroundings> m_world;
    std::unique_ptr<AlphaTabController> m_controller;
    std::unique_ptr<QMainWindow> m_window;
    QLineEdit *m_field = nullptr;
    std::unique_ptr<AppDelegate> m_delegate;

    QStringList sent() const { return m_world->engine->take(); }
    void launch()
    {
        m_delegate = std::make_unique<AppDelegate>(*m_controller, m_world->path({}));
        m_delegate->applicationDidFinishLaunching();
    }

private Q_SLOTS:
    void init()
    {
        m_world = std::make_unique<TestSurroundings>();
        m_controller = std::make_unique<AlphaTabController>(m_world->make());
        m_window = std::make_unique<QMainWindow>();
        m_field = new QLineEdit;
        m_window->setCentralWidget(m_field);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        m_field->setFocus();
    }

    void cleanup()
    {
        m_delegate.reset();
        m_window.reset();
    }

    void spaceTogglesOnceThePlayerIsReady_data()
    {
        QTest::addColumn<Qt::KeyboardModifiers>("modifiers");
        QTest::addColumn<bool>("toggles");
        QTest::newRow("alone") << Qt::KeyboardModifiers(Qt::NoModifier) << true;
        QTest::newRow("shift") << Qt::KeyboardModifiers(Qt::ShiftModifier) << true;
        QTest::newRow("keypad") << Qt::KeyboardModifiers(Qt::KeypadModifier) << true;
        QTest::newRow("control") << Qt::KeyboardModifiers(Qt::ControlModifier) << false;
        QTest::newRow("alt") << Qt::KeyboardModifiers(Qt::AltModifier) << false;
        QTest::newRow("meta") << Qt::KeyboardModifiers(Qt::MetaModifier) << false;
        QTest::newRow("shift and control") << (Qt::ShiftModifier | Qt::ControlModifier) << false;
    }

    void spaceTogglesOnceThePlayerIsReady()
    {
        QFETCH(Qt::KeyboardModifiers, modifiers);
        QFETCH(bool, toggles);
        report(m_controller->playerReady, true);
        launch();
        const auto *reached = new KeyCount(m_field);
        QTest::keyClick(m_field, Qt::Key_Space, modifiers);
        QCOMPARE(sent(), toggles ? toggled : QStringList());
        QCOMPARE(reached->presses, toggles ? 0 : 1);
        if (toggles)
            QCOMPARE(m_field->text(), QString());
    }

    void spaceIsATypedBlankBefore()
    {
        launch();
        QTest::keyClick(m_field, Qt::Key_Space);
        QCOMPARE(sent(), QStringList());
        QCOMPARE(m_field->text(), u" "_s);
    }

    void throughTheWindowItTogglesOnceToo()
    {
        report(m_controller->playerReady, true);
        launch();
        QTest::keyClick(m_window->windowHandle(), Qt::Key_Space);
        QCOMPARE(sent(), toggled);
        QCOMPARE(m_field->text(), QString());
    }

    void inAFilePanelItIsABlank()
    {
        report(m_controller->playerReady, true);
        launch();
        QFileDialog panel(m_window.get());
        panel.setOption(QFileDialog::DontUseNativeDialog);
        panel.setAcceptMode(QFileDialog::AcceptSave);
        panel.open();
        QVERIFY(QTest::qWaitForWindowActive(&panel));
        auto *name = panel.findChild<QLineEdit *>();
        QVERIFY(name);
        name->clear();
        name->setFocus();
        for (const char key : "Ave Maria"_ba)
            QTest::keyClick(panel.windowHandle(), key);
        QCOMPARE(name->text(), u"Ave Maria"_s);
        // A window over it, such as the question whether a file is to be replaced, belongs to it.
        QDialog question(&panel);
        question.open();
        question.activateWindow();
        QTRY_COMPARE(QApplication::activeWindow(), &question);
        QTest::keyClick(&question, Qt::Key_Space);
        QCOMPARE(sent(), QStringList());
        question.close();
        panel.close();
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        QTest::keyClick(m_window->windowHandle(), Qt::Key_Space);
        QCOMPARE(sent(), toggled);
    }

    void otherKeysPass()
    {
        report(m_controller->playerReady, true);
        launch();
        QTest::keyClick(m_field, Qt::Key_A);
        QCOMPARE(sent(), QStringList());
        QCOMPARE(m_field->text(), u"a"_s);
    }

    void holdingTogglesRepeatedly()
    {
        report(m_controller->playerReady, true);
        launch();
        for (const bool repeated : { false, true, true }) {
            QKeyEvent press(QEvent::KeyPress, Qt::Key_Space, Qt::NoModifier, u" "_s, repeated);
            QCoreApplication::sendEvent(m_field, &press);
        }
        QCOMPARE(sent(), toggled + toggled + toggled);
    }

    void theBarCountsWhateverTheLayoutMakesOfIt()
    {
        report(m_controller->playerReady, true);
        launch();
        QKeyEvent press(QEvent::KeyPress, Qt::Key_nobreakspace, Qt::ShiftModifier, 65, 0, 0, u"\u00a0"_s);
        QCoreApplication::sendEvent(m_field, &press);
        QCOMPARE(sent(), toggled);
    }

    void onlyTheFirstFileIsOpened()
    {
        launch();
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        sent();
        m_delegate->open({});
        QCOMPARE(sent(), QStringList());
        m_delegate->open(
            { m_world->file(u"a.gp"_s, "x"), m_world->file(u"b.gp"_s, "y"), m_world->file(u"c.gp"_s, "z") });
        QCOMPARE(sent(), QStringList{ u"window.qv.loadBase64('eA==')"_s });
    }

    void ofTwoFilesHandedInBeforeReadyTheSecondLoads()
    {
        launch();
        m_delegate->open({ m_world->file(u"a.gp"_s, "x") });
        m_delegate->open({ m_world->file(u"b.gp"_s, "y") });
        m_controller->handle({ { u"type"_s, u"ready"_s } });
        QCOMPARE(sent().mid(1), QStringList{ u"window.qv.loadBase64('eQ==')"_s });
    }

    void windowShots()
    {
        m_world->file(u"qv_window_shot"_s);
        m_world->engine->picture = QImage(5, 4, QImage::Format_RGB32);
        m_world->engine->picture.fill(Qt::blue);
        launch();
        const QList<QTimer *> timers = m_delegate->findChildren<QTimer *>();
        QCOMPARE(timers.size(), 1);
        QCOMPARE(timers.constFirst()->interval(), 2000);
        QVERIFY(timers.constFirst()->isActive() && !timers.constFirst()->isSingleShot());
        const QString window = m_world->path(u"qv_window_shot.png"_s);
        const QString web = m_world->path(u"qv_web_shot.png"_s);
        for (int round = 0; round < 2; ++round) {
            QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(window) && QFile::exists(web), 4000);
            QCOMPARE(QImage(window).size(), m_window->size() * m_window->devicePixelRatio());
            QCOMPARE(QImage(web).size(), QSize(5, 4));
            QVERIFY(QFile::remove(window) && QFile::remove(web));
        }
        QVERIFY(m_world->log->isEmpty());
    }

    void aMarkerMadeAfterLaunchHasNoEffect()
    {
        launch();
        m_world->file(u"qv_window_shot"_s);
        QVERIFY(m_delegate->findChildren<QTimer *>().isEmpty());
    }
};

QTEST_MAIN(TestAppDelegate)
#include "test_app_delegate.moc"
