#pragma once

#include <QList>
#include <QUrl>
#include <QWidget>

class AlphaTabController;
class QVBoxLayout;

/// The recently opened files, one row each, with a button that forgets them.
class RecentFilesList final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RecentFilesList)

public:
    explicit RecentFilesList(AlphaTabController &controller, QWidget *parent = nullptr);

    QSize sizeHint() const override;

private:
    void rebuild(const QList<QUrl> &files);

    AlphaTabController &m_controller;
    QVBoxLayout *m_rows;
};
