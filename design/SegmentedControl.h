#pragma once

#include <QList>
#include <QWidget>

class QAbstractButton;
class QButtonGroup;

/// A row of words of which exactly one is chosen.
class SegmentedControl final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SegmentedControl)

public:
    explicit SegmentedControl(const QStringList &choices, QWidget *parent = nullptr);

    int shown() const;
    /// Shows the choice at `index` without telling anybody.
    void display(int index);

Q_SIGNALS:
    /// The user chose another one.
    void chosen(int index);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QButtonGroup *m_group;
};
