#include "pdf/viewing/PDFToolbarControls.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "design/ElidedLabel.h"
#include "design/SegmentedControl.h"
#include "design/Separator.h"
#include "design/Spinner.h"
#include "pdf/conversion/RecognitionOutput.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QHBoxLayout>
#include <QStackedLayout>
#include <QTimer>

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int mostPagesAcross = 6;
/// Between two updates of how long a conversion takes.
constexpr std::chrono::milliseconds progressInterval = 1s;

QString translated(const char *text) { return QCoreApplication::translate("PDFToolbarControls", text); }

/// What is being done right now.
QString stepText(const PDFConverter::Progress &progress)
{
    if (progress.page > 0)
        return translated("Preparing page %1 of %2").arg(progress.page).arg(progress.pages);
    const int number = PDFConverter::numberOfStep(progress.step);
    if (number == 0)
        return translated("Audiveris is reading");
    const QString name = progress.step.toLower().replace(u'_', u' ');
    return translated("Audiveris is reading: %1 (step %2 of %3)")
        .arg(name, QString::number(number), QString::number(PDFConverter::stepCount()));
}

QString minutesAndSeconds(qint64 milliseconds)
{
    const qint64 seconds = milliseconds / 1000;
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

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
    spinner->setAccessibleName(spinner->toolTip());
    middle->addWidget(spinner);
    layout->addWidget(waiting);

    auto *clock = new QTimer(spinner);
    clock->setInterval(progressInterval);
    connect(clock, &QTimer::timeout, this, [this, spinner] { showProgress(*spinner); });
    m_controller.conversionProgress.onChange(spinner, [this, spinner](const auto &) { showProgress(*spinner); });
    m_controller.converting.observe(place, [this, layout, spinner, clock](bool converting) {
        layout->setCurrentIndex(converting ? 1 : 0);
        spinner->setToolTip(tr("Reading the sheet music…"));
        if (converting) {
            m_conversionTime.start();
            clock->start();
        } else {
            clock->stop();
        }
    });
    return place;
}

/// Says below the spinner's own words what is being done, and for how long it all has been going on.
void PDFToolbarControls::showProgress(Spinner &spinner)
{
    if (!m_controller.converting)
        return;
    const QString step = stepText(m_controller.conversionProgress);
    const QString time = minutesAndSeconds(m_conversionTime.elapsed());
    spinner.setToolTip(tr("Reading the sheet music…") + u'\n' + tr("%1, for %2").arg(step, time));
    spinner.setAccessibleDescription(tr("%1, for %2").arg(step, time));
    // A screen reader is told of steps, not of every second.
    if (step == m_conversionStep)
        return;
    m_conversionStep = step;
    QAccessibleEvent changed(&spinner, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
}
