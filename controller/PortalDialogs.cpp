#include "controller/PortalDialogs.h"

#include "controller/FileDialogs.h"
#include "controller/KeyWindow.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QWidget>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

// What the portal calls a filter, a(sa(us)): each has a name and patterns, and each pattern a kind and a text.
struct PortalPattern {
    uint kind = 0;
    QString text;
};

struct PortalFilter {
    QString name;
    QList<PortalPattern> patterns;
};

Q_DECLARE_METATYPE(PortalPattern)
Q_DECLARE_METATYPE(PortalFilter)

QDBusArgument &operator<<(QDBusArgument &argument, const PortalPattern &pattern)
{
    argument.beginStructure();
    argument << pattern.kind << pattern.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalPattern &pattern)
{
    argument.beginStructure();
    argument >> pattern.kind >> pattern.text;
    argument.endStructure();
    return argument;
}

QDBusArgument &operator<<(QDBusArgument &argument, const PortalFilter &filter)
{
    argument.beginStructure();
    argument << filter.name << filter.patterns;
    argument.endStructure();
    return argument;
}

const QDBusArgument &operator>>(const QDBusArgument &argument, PortalFilter &filter)
{
    argument.beginStructure();
    argument >> filter.name >> filter.patterns;
    argument.endStructure();
    return argument;
}

namespace {

/// In both letter cases, because panels compare literally.
QVariant filters(const QString &name, const QStringList &extensions)
{
    PortalFilter filter{ name, {} };
    for (const QString &extension : extensions) {
        for (const QString &ending : { extension, extension.toUpper() })
            filter.patterns << PortalPattern{ 0, u"*."_s + ending };
    }
    return QVariant::fromValue(QList<PortalFilter>{ filter });
}

/// A path as the portal takes it: bytes with a zero at the end.
QByteArray pathBytes(const QString &path) { return QFile::encodeName(path) + '\0'; }

/// What the panel lies over. The portal knows windows of X11 by their number.
QString parentName()
{
    const QWidget *window = KeyWindow::find();
    return window && QGuiApplication::platformName() == "xcb"_L1 ? u"x11:"_s + QString::number(window->winId(), 16)
                                                                 : QString();
}

/// Takes keys, clicks and drops from the application's windows while a panel of another program is open. A modal window
/// would do that, too. But on X11 the focus comes back before the panel's answer does, and Qt hands it on to the modal
/// window, which nobody sees: the keys would be gone until the next click. The one key that works is Escape: a panel
/// that hangs, or that never came while the user looked elsewhere, would take the window for ever.
class InputBlock final : public QObject {
public:
    explicit InputBlock(std::function<void()> escaped)
        : m_escaped(std::move(escaped))
    {
        qApp->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::ShortcutOverride: // comes first; what is a shortcut here is no press of a key afterwards
        case QEvent::KeyPress:
            if (static_cast<const QKeyEvent *>(event)->key() == Qt::Key_Escape && !std::exchange(m_hasEscaped, true))
                m_escaped();
            [[fallthrough]];
        case QEvent::KeyRelease:
        case QEvent::Shortcut:
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonRelease:
        case QEvent::MouseButtonDblClick:
        case QEvent::ContextMenu:
        case QEvent::Wheel:
        case QEvent::TouchBegin:
        case QEvent::TouchUpdate:
        case QEvent::TouchEnd:
        case QEvent::TabletPress:
        case QEvent::TabletRelease:
        case QEvent::DragEnter:
        case QEvent::DragMove:
        case QEvent::Drop:
        case QEvent::Close:
            event->ignore();
            return true;
        default:
            return false;
        }
    }

private:
    const std::function<void()> m_escaped;
    bool m_hasEscaped = false;
};

} // namespace

PortalDialogs::PortalDialogs(
    const QDBusConnection &bus, std::unique_ptr<Dialogs> otherwise, const PortalRequest::Timeouts &timeouts)
    : m_bus(bus)
    , m_otherwise(std::move(otherwise))
    , m_timeouts(timeouts)
{
    qDBusRegisterMetaType<PortalPattern>();
    qDBusRegisterMetaType<QList<PortalPattern>>();
    qDBusRegisterMetaType<PortalFilter>();
    qDBusRegisterMetaType<QList<PortalFilter>>();
}

PortalDialogs::~PortalDialogs() = default;

bool PortalDialogs::areWanted()
{
    // Both are Qt's own variables.
    return qEnvironmentVariableIsEmpty("QT_QPA_PLATFORMTHEME")
        && !qEnvironmentVariableIsSet("QT_NO_XDG_DESKTOP_PORTAL");
}

std::optional<QUrl> PortalDialogs::chooseFileToOpen(const QStringList &extensions)
{
    const Answer answer = ask(u"OpenFile"_s, FileDialogs::tr("Open"),
        { { u"filters"_s, filters(FileDialogs::tr("Scores and sheet music"), extensions) } });
    return answer.given ? answer.file : m_otherwise->chooseFileToOpen(extensions);
}

std::optional<QUrl> PortalDialogs::chooseFileToSave(const QString &proposedName, const QString &extension)
{
    const Answer answer = ask(u"SaveFile"_s, FileDialogs::tr("Export as Guitar Pro"),
        { { u"filters"_s, filters(FileDialogs::tr("Guitar Pro files"), { extension }) },
            { u"current_name"_s, FileDialogs::fileNameFor(proposedName) },
            { u"current_folder"_s, pathBytes(FileDialogs::documentsFolder()) } });
    if (!answer.given)
        return m_otherwise->chooseFileToSave(proposedName, extension);
    if (!answer.file || !QFileInfo(answer.file->toLocalFile()).suffix().isEmpty())
        return answer.file;
    // The panel has asked about the file of that name, not about this one.
    const QString full = answer.file->toLocalFile() + u'.' + extension;
    return QFileInfo::exists(full) ? answer.file : QUrl::fromLocalFile(full);
}

PortalDialogs::Answer PortalDialogs::ask(const QString &method, const QString &title, QVariantMap options)
{
    if (!m_bus.isConnected() || m_tookTooLong)
        return {};
    const QString token = u"quaverly%1"_s.arg(++m_requests);
    options.insert(u"handle_token"_s, token);
    options.insert(u"modal"_s, true);
    QDBusMessage call = QDBusMessage::createMethodCall(u"org.freedesktop.portal.Desktop"_s,
        u"/org/freedesktop/portal/desktop"_s, u"org.freedesktop.portal.FileChooser"_s, method);
    call << parentName() << title << options;
    PortalRequest request(m_bus, token, m_timeouts);
    const InputBlock block([&request] { request.cancel(); });
    const std::optional<QVariantMap> results = request.run(call);
    m_tookTooLong = request.tookTooLong();
    if (!results)
        return {};
    const QStringList uris = results->value(u"uris"_s).toStringList();
    return { true, uris.isEmpty() ? std::nullopt : std::optional(QUrl(uris.constFirst())) };
}
