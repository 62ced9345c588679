#include "pdf/viewing/PDFToolbarControls.h"

#include "controller/AlphaTabController.h"
#include "views/design/Button.h"
#include "views/design/ElidedLabel.h"
#include "views/design/SegmentedControl.h"
#include "views/design/Separator.h"
#include "views/design/Spinner.h"

#include <QHBoxLayout>
#include <QStackedLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostPagesAcross = 6;

} // namespace

PDFToolbarControls::PDFToolbarControls(AlphaTabController &controller, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(8);
    layout->addStretch();
    auto *title = new ElidedLabel(Theme::Type::Caption, &Theme::Colors::secondary);
    title->setText(tr("Pages"));
    layout->addWidget(title);
    layout->addWidget(makePicker());
    layout->addSpacing(4);
    layout->addWidget(new Separator(Qt::Vertical, Theme::controlHeight - 8));
    layout->addWidget(makeConversion());
}

QWidget *PDFToolbarControls::makePicker()
{
    QStringList choices;
    for (int pages = 1; pages <= mostPagesAcross; ++pages)
        choices << QString::number(pages);
    auto *picker = new SegmentedControl(choices);
    picker->setAccessibleName(tr("Pages"));
    picker->setToolTip(tr("How many pages to show side by side"));
    m_controller.pdfPagesAcross.observe(picker, [picker](int pages) { picker->display(pages - 1); });
    connect(picker, &SegmentedControl::chosen, this, [this](int index) { m_controller.pdfPagesAcross = index + 1; });
    return picker;
}

/// The button, or a sign that its work is being done, in the button's place.
QWidget *PDFToolbarControls::makeConversion()
{
    auto *place = new QWidget;
    place->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto *layout = new QStackedLayout(place);

    auto *convert = new Button(Button::Look::Tool);
    convert->setIconName(u"wand.and.stars"_s);
    convert->setText(tr("Convert to Guitar Pro"));
    convert->setToolTip(tr("Read the notation with Audiveris and open it as an interactive score (beta)"));
    connect(convert, &Button::clicked, &m_controller, &AlphaTabController::convertOpenPDF);
    layout->addWidget(convert);

    auto *waiting = new QWidget;
    auto *middle = new QHBoxLayout(waiting);
    middle->setContentsMargins({});
    auto *spinner = new Spinner;
    spinner->setToolTip(tr("Reading the sheet music…"));
    middle->addWidget(spinner);
    layout->addWidget(waiting);

    m_controller.converting.observe(place, [layout](bool converting) { layout->setCurrentIndex(converting ? 1 : 0); });
    return place;
}
