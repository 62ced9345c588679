#include "app/trainer/TrainerPanel.h"

#include "controller/AlphaTabController.h"
#include "controller/SpeedRange.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// In percent; a box has whole numbers.
constexpr int slowest = int(SpeedRange::slowest);
constexpr int fastest = int(SpeedRange::fastest);

/// Takes digits of every script, since a keyboard may have no others, and shows those of all texts beside it.
class NumberBox final : public QSpinBox {
public:
    NumberBox() { setLocale(QLocale::c()); }

protected:
    QValidator::State validate(QString &text, int &place) const override
    {
        for (QChar &c : text) {
            if (c.isDigit())
                c = QChar(u'0' + c.digitValue());
        }
        return QSpinBox::validate(text, place);
    }
};

QSpinBox *number(int least, int most, int value, const QString &suffix)
{
    auto *box = new NumberBox;
    box->setRange(least, most);
    box->setSuffix(suffix);
    box->setValue(value);
    return box;
}

} // namespace

TrainerPanel::TrainerPanel(AlphaTabController &controller, QWidget *parent)
    : QDialog(parent)
    , m_controller(controller)
    , m_session(controller)
    //: Behind a number of percent.
    , m_from(number(slowest, fastest, SpeedTrainer::Steps().from, tr(" %")))
    , m_to(number(slowest, fastest, SpeedTrainer::Steps().to, tr(" %")))
    , m_step(number(1, 50, SpeedTrainer::Steps().step, tr(" %")))
    , m_passes(number(1, 50, SpeedTrainer::Steps().passes, QString()))
    , m_countIn(new QCheckBox(tr("Count in before each pass")))
    , m_restart(new QCheckBox(tr("Back to the first speed when stopped")))
    , m_state(new QLabel)
    , m_begin(new QPushButton)
{
    setWindowTitle(tr("Speed Trainer"));
    setAttribute(Qt::WA_DeleteOnClose);
    auto *layout = new QVBoxLayout(this);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    layout->setSpacing(12);
    layout->addWidget(makeSettings());
    m_restart->setChecked(TrainerSession::Plan().restart);
    layout->addWidget(m_countIn);
    layout->addWidget(m_restart);
    layout->addWidget(m_state);
    auto *buttons = new QDialogButtonBox;
    buttons->addButton(m_begin, QDialogButtonBox::ActionRole);
    buttons->addButton(tr("Close"), QDialogButtonBox::RejectRole);
    m_begin->setDefault(true);
    connect(m_begin, &QPushButton::clicked, this, &TrainerPanel::beginOrEnd);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(m_countIn, &QCheckBox::toggled, this, [this](bool countIn) { m_session.setCountIn(countIn); });
    m_controller.canCountIn.observe(m_countIn, [this](bool can) { m_countIn->setEnabled(can); });
    m_session.passes.onChange(this, [this](int) { refresh(); });
    m_session.running.onChange(this, [this](bool) { refresh(); });
    m_controller.tempoPercent.onChange(this, [this](double) { refresh(); });
    m_controller.hasScore.onChange(this, [this](bool) { refresh(); });
    m_controller.playerReady.onChange(this, [this](bool) { refresh(); });
    refresh();
}

TrainerPanel::~TrainerPanel() = default;

QWidget *TrainerPanel::makeSettings()
{
    auto *settings = new QWidget;
    auto *form = new QFormLayout(settings);
    form->setContentsMargins({});
    const auto row = [form](const QString &label, QSpinBox *box) {
        box->setAccessibleName(label);
        form->addRow(label, box);
    };
    row(tr("From"), m_from);
    row(tr("To"), m_to);
    row(tr("Step"), m_step);
    row(tr("Passes per step"), m_passes);
    // A trainer goes up.
    m_to->setMinimum(m_from->value());
    connect(m_from, &QSpinBox::valueChanged, m_to, &QSpinBox::setMinimum);
    return settings;
}

void TrainerPanel::beginOrEnd()
{
    if (m_session.running)
        m_session.end();
    else
        m_session.begin(plan());
}

void TrainerPanel::refresh()
{
    const bool running = m_session.running;
    m_begin->setText(running ? tr("End Training") : tr("Begin Training"));
    m_begin->setEnabled(running || (m_controller.hasScore && m_controller.playerReady));
    for (QWidget *setting : std::initializer_list<QWidget *>{ m_from, m_to, m_step, m_passes, m_restart })
        setting->setEnabled(!running);
    const int speed = static_cast<int>(std::lround(m_controller.tempoPercent));
    const int all = m_session.plan().steps.passes;
    m_state->setText(!running ? tr("Choose a passage, then begin.")
            : speed >= m_session.plan().steps.to
            ? tr("%1 %: the last speed").arg(speed)
            : tr("%1 %, pass %2 of %3").arg(speed).arg(m_session.passes + 1).arg(all));
}

TrainerSession::Plan TrainerPanel::plan() const
{
    return { .steps
        = { .from = m_from->value(), .to = m_to->value(), .step = m_step->value(), .passes = m_passes->value() },
        .countIn = m_countIn->isEnabled() && m_countIn->isChecked(),
        .restart = m_restart->isChecked() };
}
