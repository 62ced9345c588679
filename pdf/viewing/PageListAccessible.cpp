#include "pdf/viewing/PageListAccessible.h"

#include "pdf/viewing/PageList.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include <unordered_map>

using namespace Qt::StringLiterals;

namespace {

/// One row. The toolkit owns it once it is registered.
class Row final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    Row(PageList &list, int page)
        : m_list(&list)
        , m_page(page)
    {
    }

    bool isValid() const override { return !m_list.isNull(); }
    QObject *object() const override { return nullptr; }
    QWindow *window() const override { return m_list ? m_list->window()->windowHandle() : nullptr; }
    QAccessibleInterface *parent() const override { return QAccessible::queryAccessibleInterface(m_list); }
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Button; }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? PageList::nameOf(m_page) : QString();
    }
    void setText(QAccessible::Text, const QString &) override { }

    QRect rect() const override
    {
        const QWidget *viewport = m_list ? m_list->viewport() : nullptr;
        return viewport ? m_list->rowOf(m_page).translated(viewport->mapToGlobal(QPoint())) : QRect();
    }

    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!m_list) {
            state.invalid = true;
            return state;
        }
        state.focusable = true;
        state.focused = m_list->hasFocus() && m_list->current() == m_page;
        state.offscreen = !m_list->viewport()->rect().intersects(m_list->rowOf(m_page));
        state.invisible = !m_list->isVisible();
        return state;
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface *>(this) : nullptr;
    }

    QStringList actionNames() const override { return { pressAction() }; }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }
    void doAction(const QString &name) override
    {
        if (m_list && name == pressAction())
            m_list->choose(m_page);
    }

private:
    const QPointer<PageList> m_list;
    const int m_page;
};

/// The list itself. Rows come into being when somebody asks for them.
class List final : public QAccessibleWidget {
    Q_DISABLE_COPY_MOVE(List)

public:
    explicit List(PageList &list)
        : QAccessibleWidget(&list, QAccessible::List)
        , m_list(list)
    {
    }

    int childCount() const override { return m_list.pageCount(); }

    QAccessibleInterface *child(int page) const override
    {
        if (page < 0 || page >= m_list.pageCount())
            return nullptr;
        const auto known = m_rows.find(page);
        if (known != m_rows.end())
            return QAccessible::accessibleInterface(known->second);
        auto *row = new Row(m_list, page);
        m_rows.emplace(page, QAccessible::registerAccessibleInterface(row));
        return row;
    }

    int indexOfChild(const QAccessibleInterface *child) const override
    {
        for (const auto &[page, id] : m_rows) {
            if (QAccessible::accessibleInterface(id) == child)
                return page;
        }
        return -1;
    }

    QAccessibleInterface *childAt(int x, int y) const override
    {
        const QPoint position = m_list.viewport()->mapFromGlobal(QPoint(x, y));
        const std::optional<int> page
            = m_list.viewport()->rect().contains(position) ? m_list.pageAt(position) : std::nullopt;
        return page ? child(*page) : nullptr;
    }

    QAccessibleInterface *focusChild() const override { return m_list.hasFocus() ? child(m_list.current()) : nullptr; }

protected:
    ~List() override
    {
        for (const auto &[page, id] : m_rows)
            QAccessible::deleteAccessibleInterface(id);
    }

private:
    PageList &m_list;
    mutable std::unordered_map<int, QAccessible::Id> m_rows;
};

QAccessibleInterface *make(const QString &className, QObject *object)
{
    auto *list = className == "PageList"_L1 ? qobject_cast<PageList *>(object) : nullptr;
    return list ? new List(*list) : nullptr;
}

} // namespace

void PageListAccessible::install()
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(make), true);
}

void PageListAccessible::announceFocus(PageList &list, int page)
{
    if (!QAccessible::isActive())
        return;
    QAccessibleEvent event(&list, QAccessible::Focus);
    event.setChild(page);
    QAccessible::updateAccessibility(&event);
}
