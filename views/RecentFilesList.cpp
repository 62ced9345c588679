#include "views/RecentFilesList.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "design/ElidedLabel.h"
#include "views/RecentFileRow.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace {

constexpr int greatestWidth = 360;

} // namespace

RecentFilesList::RecentFilesList(AlphaTabController &controller, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_rows(new QVBoxLayout)
{
    setMaximumWidth(greatestWidth);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(8);

    auto *header = new QHBoxLayout;
    // In line with what stands in the rows.
    header->setContentsMargins(8, 0, 3, 0);
    auto *title = new ElidedLabel(Theme::Type::Headline, &Theme::Colors::secondary);
    title->setText(tr("Recent"));
    header->addWidget(title, 1);
    auto *clear = new Button(Button::Look::Plain);
    clear->setText(tr("Clear"));
    clear->setFont(Theme::font(Theme::Type::Caption));
    clear->setTint(&Theme::Colors::secondary);
    connect(clear, &Button::clicked, &controller, &AlphaTabController::clearRecents);
    header->addWidget(clear);
    layout->addLayout(header);

    m_rows->setSpacing(2);
    layout->addLayout(m_rows);
    controller.recentFiles.observe(this, [this](const QList<QUrl> &files) { rebuild(files); });
}

QSize RecentFilesList::sizeHint() const { return { greatestWidth, QWidget::sizeHint().height() }; }

void RecentFilesList::rebuild(const QList<QUrl> &files)
{
    while (QLayoutItem *item = m_rows->takeAt(0)) {
        // Later: the row may be the one whose click brought us here.
        item->widget()->hide();
        item->widget()->deleteLater();
        delete item;
    }
    for (const QUrl &url : files)
        m_rows->addWidget(new RecentFileRow(m_controller, url));
}
