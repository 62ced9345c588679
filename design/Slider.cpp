#include "design/Slider.h"

#include "design/Theme.h"

#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

/// Shows assistive tools the real range and not the steps behind it.
class AccessibleSlider final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleSlider(Slider *slider)
        : QAccessibleWidget(slider, QAccessible::Slider)
        , m_slider(slider)
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override { return m_slider->shown(); }
    QVariant minimumValue() const override { return m_slider->from(); }
    QVariant maximumValue() const override { return m_slider->to(); }
    QVariant minimumStepSize() const override { return m_slider->stepSize(); }

    void setCurrentValue(const QVariant &value) override
    {
        if (m_slider->isEnabled())
            m_slider->setValue(int(std::lround((value.toDouble() - m_slider->from()) / m_slider->stepSize())));
    }

private:
    Slider *const m_slider;
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object)
{
    auto *slider = className == "Slider"_L1 ? qobject_cast<Slider *>(object) : nullptr;
    return slider ? new AccessibleSlider(slider) : nullptr;
}

} // namespace

Slider::Slider(double from, double to, int steps, int arrowSteps, Size size, QWidget *parent)
    : QSlider(Qt::Horizontal, parent)
    , m_from(from)
    , m_to(to)
    , m_size(size)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setRange(0, steps);
    setSingleStep(arrowSteps);
    setPageStep(10 * arrowSteps);
    setFocusPolicy(Qt::StrongFocus);
    // More lies on the right in every language; the arrow keys follow.
    setLayoutDirection(Qt::LeftToRight);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QSlider::valueChanged, this, [this] {
        Q_EMIT moved(shown());
        if (!isSliderDown())
            Q_EMIT settled(shown());
    });
    connect(this, &QSlider::sliderReleased, this, [this] { Q_EMIT settled(shown()); });
}

double Slider::shown() const
{
    // The division last: a hundredth of the way through a hundred steps is exactly 0.01.
    return m_from + (m_to - m_from) * value() / maximum();
}

void Slider::display(double value)
{
    const QSignalBlocker blocker(this);
    setValue(stepOf(value));
}

int Slider::stepOf(double value) const
{
    const double share = (value - m_from) / (m_to - m_from);
    return share > 0 ? int(std::lround(std::min(share, 1.0) * maximum())) : 0;
}

void Slider::setQuiet(bool quiet)
{
    if (std::exchange(m_quiet, quiet) != quiet)
        update();
}

double Slider::stepSize() const { return (m_to - m_from) / maximum(); }

QSize Slider::sizeHint() const { return { 110, m_size == Size::Mini ? 16 : 22 }; }

QSize Slider::minimumSizeHint() const { return { 48, sizeHint().height() }; }

qreal Slider::knobRadius() const { return m_size == Size::Mini ? 5.5 : 7; }

qreal Slider::knobCenter() const
{
    // Two pixels of room for the focus ring.
    const qreal margin = knobRadius() + 2;
    return margin + (width() - 2 * margin) * sliderPosition() / maximum();
}

void Slider::follow(qreal x)
{
    const qreal margin = knobRadius() + 2;
    const qreal share = std::clamp((x - m_grip - margin) / std::max(1.0, width() - 2 * margin), 0.0, 1.0);
    setSliderPosition(int(std::lround(share * maximum())));
}

void Slider::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || isSliderDown()) {
        event->ignore();
        return;
    }
    const qreal distance = event->position().x() - knobCenter();
    m_grip = std::abs(distance) <= knobRadius() ? distance : 0;
    // Down before the first move, so that the press is part of the drag and not a step of its own.
    setSliderDown(true);
    follow(event->position().x());
    update();
}

void Slider::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_usualValue && !isSliderDown())
        setValue(stepOf(*m_usualValue));
    else
        mousePressEvent(event);
}

void Slider::mouseMoveEvent(QMouseEvent *event)
{
    if (isSliderDown())
        follow(event->position().x());
    else
        event->ignore();
}

void Slider::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !isSliderDown()) {
        event->ignore();
        return;
    }
    setSliderDown(false);
    update();
}

void Slider::wheelEvent(QWheelEvent *event) { event->ignore(); }

void Slider::hideEvent(QHideEvent *event)
{
    // A drag ends with the slider that is taken away; nobody let go, so nobody is told.
    if (!event->spontaneous()) {
        const QSignalBlocker blocker(this);
        setSliderDown(false);
    }
    QSlider::hideEvent(event);
}

void Slider::paintEvent(QPaintEvent *)
{
    const Theme::Colors &colors = Theme::colors(palette());
    const qreal radius = knobRadius();
    const qreal middle = height() / 2.0;
    const qreal thickness = m_size == Size::Mini ? 3 : 4;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const QRectF groove(radius, middle - thickness / 2, width() - 2 * radius, thickness);
    painter.setBrush(Theme::paintsEnabled(*this) ? colors.separator : colors.fill);
    painter.drawRoundedRect(groove, thickness / 2, thickness / 2);
    QRectF passed = groove;
    passed.setRight(knobCenter());
    const QColor &passedColor = m_quiet ? colors.edge : colors.accent;
    painter.setBrush(Theme::paintsEnabled(*this) ? passedColor : colors.disabled);
    painter.drawRoundedRect(passed, thickness / 2, thickness / 2);
    painter.setBrush(Theme::paintsEnabled(*this) ? colors.knob : colors.fill);
    painter.setPen(QPen(colors.knobRim, 1));
    painter.drawEllipse(QPointF(knobCenter(), middle), radius - 0.5, radius - 0.5);
    if (hasFocus()) {
        const QRectF ring(knobCenter() - radius - 2, middle - radius - 2, 2 * radius + 4, 2 * radius + 4);
        Theme::paintFocusRing(painter, ring, radius + 1, palette());
    }
}
