#include "app/menus/ShortcutsWindow.h"

#include <QAction>
#include <QMenu>
#include <QMenuBar>

using namespace Qt::StringLiterals;

namespace {

QString withoutMnemonic(QString title)
{
    title.replace("&&"_L1, "\n"_L1).remove(u'&');
    return title.replace(u'\n', u'&');
}

QString row(const QString &title, const QString &keys)
{
    return u"<tr><td width='62%'>%1</td><td>%2</td></tr>"_s.arg(title.toHtmlEscaped(), keys.toHtmlEscaped());
}

QString section(const QString &title, const QString &rows)
{
    return u"<h3>%1</h3><table width='100%' cellpadding='3'>%2</table>"_s.arg(title.toHtmlEscaped(), rows);
}

/// "F11, F"
QString keysOf(const QAction &item)
{
    QStringList keys;
    for (const QKeySequence &key : item.shortcuts())
        keys << key.toString(QKeySequence::NativeText);
    return keys.join(u", "_s);
}

/// "1 … 9", of a menu whose items are numbered.
QString keysFromTo(const QMenu &menu)
{
    const QList<QAction *> items = menu.actions();
    if (items.isEmpty() || items.constFirst()->shortcut().isEmpty())
        return {};
    return u"%1 … %2"_s.arg(keysOf(*items.constFirst()), keysOf(*items.constLast()));
}

} // namespace

ShortcutsWindow::ShortcutsWindow(const QMenuBar &menus, QWidget *parent)
    : QTextBrowser(parent)
{
    setWindowFlag(Qt::Window);
    setWindowTitle(tr("Keyboard Shortcuts"));
    setAccessibleName(tr("Keyboard Shortcuts"));
    setAttribute(Qt::WA_DeleteOnClose);
    document()->setDocumentMargin(24);
    resize(560, 780);
    QString page = everywhere();
    for (const QAction *menu : menus.actions()) {
        if (const QString rows = keysOf(*menu->menu()); !rows.isEmpty())
            page += section(withoutMnemonic(menu->text()), rows);
    }
    setHtml(page);
}

ShortcutsWindow::~ShortcutsWindow() = default;

QString ShortcutsWindow::everywhere()
{
    const QString rows = row(tr("Play or pause"), tr("Space"))
        + row(tr("Make the score larger or smaller"), tr("Ctrl and the wheel"))
        + row(tr("From control to control"), tr("Tab, Shift+Tab"))
        + row(tr("Move the slider that has the focus"), tr("Up, Down"));
    return section(tr("Everywhere in the window"), rows);
}

QString ShortcutsWindow::keysOf(const QMenu &menu)
{
    QString rows;
    for (const QAction *item : menu.actions()) {
        const QString keys = item->menu() ? keysFromTo(*item->menu()) : ::keysOf(*item);
        if (!keys.isEmpty())
            rows += row(withoutMnemonic(item->text()), keys);
    }
    return rows;
}
