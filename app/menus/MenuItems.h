#pragma once

#include "controller/Published.h"

#include <QKeySequence>
#include <QList>
#include <QString>

#include <functional>

class AlphaTabController;
class QAction;
class QMenu;

/// Adds the items of a menu: what all items of a kind have in common is said here once.
///
/// An item's key works wherever the focus is in the window, but in a text field, which takes it for itself.
class MenuItems final {
    Q_DISABLE_COPY_MOVE(MenuItems)

public:
    MenuItems(AlphaTabController &controller, QMenu &menu);

    /// An item that the page answers for: it hands the page its key, the first of `keys`.
    ///
    /// @param keys as QKeySequence::PortableText has them, apart by blanks; web/src/score-view/keys.js has the first
    /// @param inPdf what it does while a PDF is shown; without it, nothing
    QAction *pageKey(const QString &title, const QString &keys, const std::function<void()> &inPdf = {}) const;
    /// An item that does something in the window.
    QAction *command(const QString &title, const QString &keys, std::function<void()> action) const;
    /// An item with a tick, which shows a property and sets it.
    QAction *tick(const QString &title, const QString &keys, Published<bool> &property) const;

    /// Enables an item only while a score is seen, and the page is there to answer.
    void needsScore(QAction *item) const;
    /// Enables an item only while no PDF is shown.
    void needsNoPdf(QAction *item) const;

private:
    void whileSeen(QAction *item, bool inPdf) const;

    AlphaTabController &m_controller;
    QMenu &m_menu;
};
