#pragma once

#include <QSlider>

#include <optional>

/// A slim horizontal slider over a range of reals.
///
/// Pressing the groove jumps there and drags on. The wheel is left to whatever scrolls around it.
class Slider final : public QSlider {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(Slider)

public:
    enum class Size { Regular, Mini };

    /// @param steps into how many parts the range is divided
    /// @param arrowSteps how many of them an arrow key moves by; a page is ten times as far
    Slider(double from, double to, int steps, int arrowSteps, Size size = Size::Regular, QWidget *parent = nullptr);

    /// The real value as shown.
    double shown() const;
    /// Shows `value`, pulled into the range, without telling anybody. NaN counts as the lower end.
    void display(double value);

    /// A double click brings the slider to `value`, as if the user had moved it there. Without one it does nothing more
    /// than two clicks.
    void setUsualValue(double value) { m_usualValue = value; }

    /// Paints the way to the knob in grey: what the slider sets cannot be heard now.
    void setQuiet(bool quiet);
    bool isQuiet() const { return m_quiet; }

    double from() const { return m_from; }
    double to() const { return m_to; }
    double stepSize() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    /// The user moved it, in a drag or by any other way.
    void moved(double value);
    /// The user is done: let go after a drag, or moved it by one step without one.
    void settled(double value);

protected:
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    qreal knobRadius() const;
    qreal knobCenter() const;
    void follow(qreal x);
    int stepOf(double value) const;

    const double m_from;
    const double m_to;
    const Size m_size;
    std::optional<double> m_usualValue;
    bool m_quiet = false;
    /// Where the pointer holds the knob, relative to its centre.
    qreal m_grip = 0;
};
