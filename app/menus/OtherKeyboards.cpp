#include "app/menus/OtherKeyboards.h"

#include <QAction>
#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMainWindow>
#include <QWindow>

#include <optional>

namespace {

/// X11 and Wayland number the keys alike, by their place on the keyboard: from 1 to 9 and 0.
constexpr quint32 firstOfRow = 10;
constexpr quint32 lastOfRow = 19;
/// AltGr chooses a third sign of the key.
constexpr quint32 altGr = 0x80;

bool isDigit(int key) { return key >= Qt::Key_0 && key <= Qt::Key_9; }

std::optional<int> digitAt(const QKeyEvent &event)
{
    const quint32 place = event.nativeScanCode();
    if (place < firstOfRow || place > lastOfRow || isDigit(event.key()) || (event.nativeModifiers() & altGr) != 0)
        return std::nullopt;
    return static_cast<int>((place - firstOfRow + 1) % 10);
}

bool isShifted(const QKeyEvent &event)
{
    return event.modifiers().testFlag(Qt::ShiftModifier)
        && (isDigit(event.key()) || event.key() == Qt::Key_Plus || event.key() == Qt::Key_Equal
            || event.key() == Qt::Key_Minus);
}

} // namespace

OtherKeyboards::OtherKeyboards(QMainWindow &window)
    : QObject(&window)
    , m_window(window)
{
    // The window's surface has each key before any widget, and is asked before the items are.
    qApp->installEventFilter(this);
}

OtherKeyboards::~OtherKeyboards() = default;

bool OtherKeyboards::eventFilter(QObject *watched, QEvent *event)
{
    const bool asks = event->type() == QEvent::ShortcutOverride;
    if ((!asks && event->type() != QEvent::KeyPress) || watched != m_window.windowHandle()
        || QApplication::activePopupWidget() || QApplication::activeModalWidget())
        return false;
    const auto &key = *static_cast<QKeyEvent *>(event);
    // A digit by its place is asked for by nobody: other items may have its sign.
    QAction *item = asks && !isShifted(key) ? nullptr : itemOf(key);
    if (!item)
        return false;
    if (!asks && (!key.isAutoRepeat() || item->autoRepeat()))
        item->trigger();
    event->accept();
    return true;
}

QAction *OtherKeyboards::itemOf(const QKeyEvent &event) const
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    if (isShifted(event))
        return itemWith(QKeyCombination(modifiers, static_cast<Qt::Key>(event.key())).toCombined());
    const std::optional<int> digit = digitAt(event);
    return digit ? itemWith(QKeyCombination(modifiers, static_cast<Qt::Key>(Qt::Key_0 + *digit)).toCombined())
                 : nullptr;
}

QAction *OtherKeyboards::itemWith(int keys) const
{
    const QKeySequence key(keys);
    for (QAction *item : m_window.findChildren<QAction *>()) {
        if (item->isEnabled() && item->shortcuts().contains(key))
            return item;
    }
    return nullptr;
}
