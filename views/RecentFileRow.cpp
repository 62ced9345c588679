#include "views/RecentFileRow.h"

#include "controller/AlphaTabController.h"
#include "design/ElidedLabel.h"
#include "design/IconLabel.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

RecentFileRow::RecentFileRow(AlphaTabController &controller, const QUrl &url, QWidget *parent)
    : QAbstractButton(parent)
{
    const QFileInfo file(url.toLocalFile());
    const QString title = file.completeBaseName().isEmpty() ? file.fileName() : file.completeBaseName();
    setAccessibleName(title);
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, &controller, [&controller, url] { controller.load(url); });

    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(8, 4, 8, 4);
    layout->setSpacing(10);
    layout->addWidget(new IconLabel(u"doc.text"_s, Theme::iconSize, &Theme::Colors::secondary));
    auto *lines = new QVBoxLayout;
    lines->setSpacing(1);
    auto *name = new ElidedLabel;
    name->setText(title);
    lines->addWidget(name);
    auto *folder = new ElidedLabel(Theme::Type::Caption, &Theme::Colors::secondary, Qt::ElideMiddle);
    folder->setText(file.path());
    lines->addWidget(folder);
    layout->addLayout(lines, 1);
    for (QWidget *child : findChildren<QWidget *>())
        child->setAttribute(Qt::WA_TransparentForMouseEvents);
    setToolTip(file.filePath().toHtmlEscaped());
}

QSize RecentFileRow::sizeHint() const { return layout()->sizeHint(); }

void RecentFileRow::enterEvent(QEnterEvent *event)
{
    update();
    QAbstractButton::enterEvent(event);
}

void RecentFileRow::leaveEvent(QEvent *event)
{
    update();
    QAbstractButton::leaveEvent(event);
}

void RecentFileRow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

void RecentFileRow::paintEvent(QPaintEvent *)
{
    const Theme::Colors &colors = Theme::colors(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (isDown() || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(isDown() ? colors.pressed : colors.hover);
        painter.drawRoundedRect(rect(), Theme::radius, Theme::radius);
    }
    if (hasFocus())
        Theme::paintFocusRing(painter, rect(), Theme::radius - 1, palette());
}
