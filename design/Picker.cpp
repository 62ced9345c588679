#include "design/Picker.h"

#include "design/Theme.h"

#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QSignalBlocker>
#include <QStyle>

using namespace Qt::StringLiterals;

namespace {

/// The toolkit's own calls a combo box by the text that is chosen in it; this one keeps its name.
class AccessiblePicker final : public QAccessibleWidget {
public:
    explicit AccessiblePicker(Picker *picker)
        : QAccessibleWidget(picker, QAccessible::ComboBox)
        , m_picker(picker)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Value ? m_picker->currentText() : QAccessibleWidget::text(kind);
    }

    QStringList actionNames() const override { return { showMenuAction(), pressAction() }; }

    void doAction(const QString &) override
    {
        if (m_picker->isEnabled())
            m_picker->showPopup();
    }

private:
    Picker *const m_picker;
};

QAccessibleInterface *makeAccessible(const QString &className, QObject *object)
{
    auto *picker = className == "Picker"_L1 ? qobject_cast<Picker *>(object) : nullptr;
    return picker ? new AccessiblePicker(picker) : nullptr;
}

} // namespace

Picker::Picker(QWidget *parent)
    : QComboBox(parent)
{
    [[maybe_unused]] static const bool installed = (QAccessible::installFactory(makeAccessible), true);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void Picker::display(const QString &id)
{
    const QSignalBlocker blocker(this);
    setCurrentIndex(findData(id));
}

QSize Picker::sizeHint() const
{
    return { QComboBox::sizeHint().width(), std::max(Theme::controlHeight, fontMetrics().height() + 10) };
}

QSize Picker::minimumSizeHint() const { return { QComboBox::minimumSizeHint().width(), sizeHint().height() }; }

void Picker::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        showPopup();
    else
        QComboBox::keyPressEvent(event);
}

void Picker::paintEvent(QPaintEvent *)
{
    const Theme::Colors &colors = Theme::colors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.fill);
    painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
    if (isEnabled() && underMouse()) {
        painter.setBrush(colors.hover);
        painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
    }
    painter.setPen(Theme::paintsEnabled(*this) ? colors.text : colors.disabled);
    const QRect place = QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(11, 0, -28, 0));
    const Qt::Alignment side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(place, int(side | Qt::AlignAbsolute) | Qt::TextSingleLine,
        fontMetrics().elidedText(currentText(), Qt::ElideRight, width() - 39));
    const QPointF tip(isRightToLeft() ? 16 : width() - 16, height() / 2.0 + 2.2);
    QPainterPath chevron(tip + QPointF(-4, -4));
    chevron.lineTo(tip);
    chevron.lineTo(tip + QPointF(4, -4));
    painter.setPen(QPen(Theme::paintsEnabled(*this) ? colors.secondary : colors.disabled, 1.6, Qt::SolidLine,
        Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(chevron);
    if (hasFocus())
        Theme::paintFocusRing(painter, rect(), Theme::radius - 1, palette());
}
