#pragma once

#include <QAbstractButton>
#include <QUrl>

class AlphaTabController;

/// One recent file: its name over its folder; a click anywhere opens it.
class RecentFileRow final : public QAbstractButton {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(RecentFileRow)

public:
    RecentFileRow(AlphaTabController &controller, const QUrl &url, QWidget *parent = nullptr);

    QSize sizeHint() const override;

protected:
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
