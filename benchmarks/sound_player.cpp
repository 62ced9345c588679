// The real window, told what to do by the lines of its standard input, for a script that measures what is heard or how
// long something takes.
//
//   open PATH      js SCRIPT      mute TRACK      resize WIDTH HEIGHT      wheel STEPS      positions COUNT      quit
//   value EXPRESSION      press X Y      move X Y      release X Y
//   choose ITEM      set NAME VALUE      tick NAME      push BUTTON
//
// "value" has the page work out an expression, whose value is written as a line of its own; "press", "move" and
// "release" are the mouse's left button over the score, in the page's pixels. "choose" is an item of the menus, "set" a
// number in a panel by its accessible name, "tick" a box to be ticked, "push" a button.
// "positions" hands the window position messages as a playing page does, fifteen a second. When the main thread was
// busy for long, "stalled" and the milliseconds are written. Every page message and every line carried out is written
// to standard output as one line: the time in seconds of the monotonic clock, "message" or "did", and the message as
// JSON or the line.

#include "app/QuaverlyApp.h"
#include "controller/AlphaTabController.h"
#include "engine_host/WebEngineHost.h"
#include "engine_host/bridge/MessageReceiver.h"
#include "engine_host/bridge/ScriptHandler.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLoggingCategory>
#include <QMouseEvent>
#include <QSocketNotifier>
#include <QSpinBox>
#include <QTimer>
#include <QUrl>
#include <QWebEnginePage>
#include <QWebEngineView>
#include <QWheelEvent>

#include <chrono>
#include <cstdio>
#include <string>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

void report(const char *what, const QByteArray &text)
{
    const std::chrono::duration<double> now = std::chrono::steady_clock::now().time_since_epoch();
    std::printf("%.6f %s %s\n", now.count(), what, text.constData());
    std::fflush(stdout);
}

/// Stands between the page and the controller and writes down what passes.
class Listener final : public MessageReceiver {
public:
    explicit Listener(MessageReceiver &controller)
        : m_controller(controller)
    {
    }

    void handle(const QVariantMap &message) override
    {
        report("message", QJsonDocument(QJsonObject::fromVariantMap(message)).toJson(QJsonDocument::Compact));
        m_controller.handle(message);
    }

    void pageHealthChanged(PageHealth health) override { m_controller.pageHealthChanged(health); }

private:
    MessageReceiver &m_controller;
};

class Commands final {
public:
    Commands(AlphaTabController &controller, QWidget &window)
        : m_controller(controller)
        , m_window(window)
    {
    }

    void carryOut(const QString &line)
    {
        const QString command = line.section(u' ', 0, 0);
        const QString argument = line.section(u' ', 1);
        if (command == u"open")
            m_controller.load(QUrl::fromLocalFile(argument));
        else if (command == u"js")
            m_controller.js(argument);
        else if (command == u"mute")
            m_controller.toggleMute(argument.toInt());
        else if (command == u"resize")
            m_window.resize(argument.section(u' ', 0, 0).toInt(), argument.section(u' ', 1, 1).toInt());
        else if (command == u"positions")
            feedPositions(argument.toInt());
        else if (command == u"wheel")
            turnWheel(argument.toInt());
        else if (command == u"value")
            tellValue(argument);
        else if (command == u"press" || command == u"move" || command == u"release")
            moveMouse(command, argument);
        else if (command == u"choose")
            chooseItem(argument);
        else if (command == u"set")
            setNumber(argument.section(u' ', 0, -2), argument.section(u' ', -1).toInt());
        else if (command == u"tick" || command == u"push")
            pushButton(argument);
        else
            QCoreApplication::quit();
        report("did", line.toUtf8());
    }

private:
    void feedPositions(int count)
    {
        auto *timer = new QTimer(&m_window);
        QObject::connect(timer, &QTimer::timeout, &m_window, [this, timer, count, fed = 0]() mutable {
            m_controller.handle(
                { { u"type"_s, u"position"_s }, { u"currentTime"_s, 66.0 * fed }, { u"endTime"_s, 66.0 * count } });
            if (++fed == count)
                timer->deleteLater();
        });
        timer->start(66);
    }

    void tellValue(const QString &expression)
    {
        if (auto *view = qobject_cast<QWebEngineView *>(m_controller.webView()))
            view->page()->runJavaScript(
                expression, [](const QVariant &value) { report("value", value.toString().toUtf8()); });
    }

    void chooseItem(const QString &text)
    {
        for (QAction *item : m_window.findChildren<QAction *>()) {
            if (item->text() == text)
                item->trigger();
        }
    }

    void setNumber(const QString &name, int value)
    {
        for (auto *box : m_window.findChildren<QSpinBox *>()) {
            if (box->accessibleName() == name)
                box->setValue(value);
        }
    }

    void pushButton(const QString &text)
    {
        for (auto *button : m_window.findChildren<QAbstractButton *>()) {
            if (button->text() == text) {
                button->click();
                return;
            }
        }
    }

    /// What takes the mouse over the score; null when there is nothing.
    QWidget *scoreTarget() const
    {
        QWidget *view = m_controller.webView();
        return view && view->focusProxy() ? view->focusProxy() : view;
    }

    void moveMouse(const QString &what, const QString &place)
    {
        QWidget *target = scoreTarget();
        if (!target)
            return;
        const QPointF at(place.section(u' ', 0, 0).toDouble(), place.section(u' ', 1, 1).toDouble());
        const auto type = what == u"press" ? QEvent::MouseButtonPress
            : what == u"move"              ? QEvent::MouseMove
                                           : QEvent::MouseButtonRelease;
        QMouseEvent event(type, at, target->mapToGlobal(at), type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton,
            type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(target, &event);
    }

    /// Over the middle of the score, as a mouse does.
    void turnWheel(int steps)
    {
        QWidget *target = scoreTarget();
        if (!target)
            return;
        const QPointF place = QRectF(target->rect()).center();
        constexpr int step = 120;
        QWheelEvent turn(place, target->mapToGlobal(place), QPoint(), QPoint(0, step * steps), Qt::NoButton,
            Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(target, &turn);
    }

    AlphaTabController &m_controller;
    QWidget &m_window;
};

/// Looks a hundred times a second whether the main thread comes to its turn.
class StallWatch final : public QTimer {
public:
    StallWatch()
    {
        connect(this, &QTimer::timeout, this, [this] {
            const qint64 gap = m_last.restart();
            if (gap >= reportedStall)
                report("stalled", QByteArray::number(gap));
        });
        m_last.start();
        start(10);
    }

private:
    static constexpr qint64 reportedStall = 50;
    QElapsedTimer m_last;
};

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication::setApplicationName(u"quaverly"_s);
    QLoggingCategory::setFilterRules(u"qt.webenginecontext.info=false"_s);
    WebEngineHost::prepare();
    const QApplication application(argc, argv);

    Surroundings surroundings = Surroundings::system();
    ScriptHandler *page = nullptr;
    surroundings.makeEngine = [&page, make = surroundings.makeEngine](ScriptHandler &handler, const auto &webFolder) {
        page = &handler;
        return make(handler, webFolder);
    };
    AlphaTabController controller(std::move(surroundings));
    Listener listener(controller);
    page->setController(&listener);

    QuaverlyApp quaverly(controller);
    quaverly.appDelegate().applicationDidFinishLaunching();

    const StallWatch watch;
    Commands commands(controller, quaverly.window());
    std::string pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &application, [&] {
        char buffer[4096];
        const ssize_t got = read(STDIN_FILENO, buffer, sizeof buffer);
        if (got <= 0) {
            input.setEnabled(false);
            QCoreApplication::quit();
            return;
        }
        pending.append(buffer, size_t(got));
        for (size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
            commands.carryOut(QString::fromUtf8(pending.data(), qsizetype(end)));
            pending.erase(0, end + 1);
        }
    });
    return QApplication::exec();
}
