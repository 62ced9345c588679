#include "design/SegmentedControl.h"

#include "design/Theme.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QButtonGroup>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;

namespace {

/// One word of the row.
class Segment final : public QAbstractButton {
public:
    Segment(const QString &text, QWidget *parent)
        : QAbstractButton(parent)
    {
        setText(text);
        setCheckable(true);
        // Tells assistive tools that this is one choice of several.
        setAutoExclusive(true);
        // Tab goes to the chosen one; from there the arrows lead to the others.
        setFocusPolicy(Qt::NoFocus);
        connect(this, &Segment::toggled, this,
            [this](bool checked) { setFocusPolicy(checked ? Qt::TabFocus : Qt::NoFocus); });
        setFont(Theme::font(Theme::Type::Caption));
    }

    QSize sizeHint() const override
    {
        return { fontMetrics().horizontalAdvance(text()) + 18, Theme::controlHeight - 4 };
    }
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
            click();
        else
            QAbstractButton::keyPressEvent(event);
    }

    void paintEvent(QPaintEvent *) override
    {
        const Theme::Colors &colors = Theme::colors(palette());
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        if (isChecked()) {
            painter.setPen(QPen(colors.knobRim, 0.5));
            painter.setBrush(Theme::isDark(palette()) ? colors.disabled : colors.knob);
            painter.drawRoundedRect(
                QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), Theme::radius - 2, Theme::radius - 2);
        }
        painter.setPen(isEnabled() ? (isChecked() ? colors.text : colors.secondary) : colors.disabled);
        painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
        if (hasFocus())
            Theme::paintFocusRing(painter, rect(), Theme::radius - 3, palette());
    }
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object)
{
    auto *control = className == "SegmentedControl"_L1 ? qobject_cast<SegmentedControl *>(object) : nullptr;
    return control ? new QAccessibleWidget(control, QAccessible::Grouping) : nullptr;
}

} // namespace

SegmentedControl::SegmentedControl(const QStringList &choices, QWidget *parent)
    : QWidget(parent)
    , m_group(new QButtonGroup(this))
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(0);
    for (const QString &choice : choices) {
        auto *segment = new Segment(choice, this);
        m_group->addButton(segment, int(m_group->buttons().size()));
        layout->addWidget(segment);
    }
    connect(m_group, &QButtonGroup::idToggled, this, [this](int index, bool checked) {
        if (checked)
            Q_EMIT chosen(index);
    });
}

int SegmentedControl::shown() const { return m_group->checkedId(); }

void SegmentedControl::display(int index)
{
    const QSignalBlocker blocker(m_group);
    if (QAbstractButton *segment = m_group->button(index))
        segment->setChecked(true);
}

void SegmentedControl::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Theme::colors(palette()).fill);
    painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
}
