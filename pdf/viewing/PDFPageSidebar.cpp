#include "pdf/viewing/PDFPageSidebar.h"

#include "controller/AlphaTabController.h"
#include "design/ElidedLabel.h"
#include "pdf/viewing/PageList.h"

#include <QVBoxLayout>

PDFPageSidebar::PDFPageSidebar(AlphaTabController &controller, const std::shared_ptr<const PDFDocument> &document,
    std::shared_ptr<PageRenderQueue> queue, QWidget *parent)
    : Surface(&Theme::Colors::sidebar, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    auto *title = new ElidedLabel(Theme::Type::Headline, &Theme::Colors::secondary);
    title->setText(tr("Pages"));
    title->setContentsMargins(14, 12, 14, 6);
    layout->addWidget(title);
    auto *list = new PageList(document, std::move(queue));
    list->setAccessibleName(tr("Pages"));
    connect(list, &PageList::chosen, &controller, [&controller](int page) { controller.pdfScrollTarget = page; });
    layout->addWidget(list, 1);
}
