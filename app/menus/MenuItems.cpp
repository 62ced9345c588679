#include "app/menus/MenuItems.h"

#include "controller/AlphaTabController.h"

#include <QMenu>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

QList<QKeySequence> sequences(const QString &keys)
{
    QList<QKeySequence> list;
    for (const QString &key : keys.split(u' ', Qt::SkipEmptyParts))
        list << QKeySequence(key, QKeySequence::PortableText);
    return list;
}

} // namespace

MenuItems::MenuItems(AlphaTabController &controller, QMenu &menu)
    : m_controller(controller)
    , m_menu(menu)
{
}

QAction *MenuItems::pageKey(const QString &title, const QString &keys, const std::function<void()> &inPdf) const
{
    const QString key = keys.section(u' ', 0, 0);
    QAction *item = command(title, keys, [&controller = m_controller, key, inPdf] {
        if (controller.pdfDocument.value())
            inPdf();
        else
            controller.pressKey(key);
    });
    whileSeen(item, bool(inPdf));
    return item;
}

QAction *MenuItems::command(const QString &title, const QString &keys, std::function<void()> action) const
{
    QAction *item = m_menu.addAction(title, &m_menu, std::move(action));
    item->setShortcuts(sequences(keys));
    return item;
}

QAction *MenuItems::tick(const QString &title, const QString &keys, Published<bool> &property) const
{
    QAction *item = m_menu.addAction(title);
    item->setShortcuts(sequences(keys));
    item->setCheckable(true);
    // A key that is held down does not flicker.
    item->setAutoRepeat(false);
    property.observe(item, [item](bool on) { item->setChecked(on); });
    QObject::connect(item, &QAction::triggered, item, [&property](bool on) { property = on; });
    return item;
}

void MenuItems::needsScore(QAction *item) const { whileSeen(item, false); }

void MenuItems::whileSeen(QAction *item, bool inPdf) const
{
    const auto refresh = [&controller = m_controller, item, inPdf] {
        const bool answers = controller.hasScore && controller.pageHealth.value() == PageHealth::Well;
        item->setEnabled(controller.pdfDocument.value() ? inPdf : answers);
    };
    m_controller.hasScore.observe(item, [refresh](bool) { refresh(); });
    m_controller.pdfDocument.onChange(item, [refresh](const auto &) { refresh(); });
    m_controller.pageHealth.onChange(item, [refresh](PageHealth) { refresh(); });
}

void MenuItems::needsNoPdf(QAction *item) const
{
    m_controller.pdfDocument.observe(item, [item](const auto &document) { item->setEnabled(!document); });
}
