#pragma once

#include <QComboBox>

/// A list of choices that shows the chosen one and opens on a click or Enter.
class Picker final : public QComboBox {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Picker)

public:
    explicit Picker(QWidget *parent = nullptr);

    /// Shows the choice whose data is `id` without telling anybody; none when there is no such choice.
    void display(const QString &id);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};
