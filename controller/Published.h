#pragma once

#include <QCoreApplication>
#include <QPointer>
#include <QThread>

#include <functional>
#include <utility>
#include <vector>

/// An observable property: every assignment is stored, made known and acted on, of an equal value too.
///
/// Main thread only. Observers live as long as their context object; the change action belongs to the owner and runs
/// last, when all the world knows the new value.
template <typename T> class Published {
    Q_DISABLE_COPY_MOVE(Published)

public:
    using Observer = std::function<void(const T &)>;

    /// Takes the initial value without telling anybody.
    explicit Published(T initial = T(), std::function<void()> action = {})
        : m_value(std::move(initial))
        , m_action(std::move(action))
    {
    }

    const T &value() const { return m_value; }
    operator const T &() const { return m_value; }

    Published &operator=(T value)
    {
        edit([&value](T &stored) { stored = std::move(value); });
        return *this;
    }

    /// Changes the value in place; counts as one assignment.
    template <typename Change> void edit(Change change)
    {
        Q_ASSERT(!qApp || QThread::currentThread() == qApp->thread());
        change(m_value);
        // By index: an observer may add another one while it is being told.
        for (size_t i = 0; i < m_observers.size(); ++i) {
            if (m_observers[i].first)
                Observer(m_observers[i].second)(m_value);
        }
        std::erase_if(m_observers, [](const auto &entry) { return entry.first.isNull(); });
        if (m_action)
            m_action();
    }

    /// Calls `observer` after each assignment, for as long as `context` lives.
    void onChange(QObject *context, Observer observer) { m_observers.emplace_back(context, std::move(observer)); }

    /// The same, and once right now with the current value.
    void observe(QObject *context, Observer observer)
    {
        observer(m_value);
        onChange(context, std::move(observer));
    }

private:
    T m_value;
    const std::function<void()> m_action;
    std::vector<std::pair<QPointer<QObject>, Observer>> m_observers;
};
