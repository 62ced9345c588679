#include "design/TabOrder.h"

#include <QAbstractButton>
#include <QWidget>

namespace {

void chain(QWidget &parent, QWidget *&last)
{
    for (QObject *child : parent.children()) {
        auto *widget = qobject_cast<QWidget *>(child);
        if (!widget || widget->isWindow())
            continue;
        // A button that takes no focus now may do so later, as the chosen one of several.
        if ((widget->focusPolicy() & Qt::TabFocus) || qobject_cast<QAbstractButton *>(widget)) {
            if (last)
                QWidget::setTabOrder(last, widget);
            last = widget;
        }
        chain(*widget, last);
    }
}

} // namespace

void TabOrder::followReadingOrder(std::initializer_list<QWidget *> parts)
{
    QWidget *last = nullptr;
    for (QWidget *part : parts)
        chain(*part, last);
}
