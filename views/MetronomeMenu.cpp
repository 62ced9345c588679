#include "views/MetronomeMenu.h"

#include "controller/AlphaTabController.h"
#include "design/IconLabel.h"
#include "design/Picker.h"
#include "design/Separator.h"
#include "design/Slider.h"
#include "design/Toggle.h"
#include "engine_host/bridge/BridgeCalls.h"

#include <QGraphicsOpacityEffect>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int menuWidth = 280;
constexpr int padding = 18;
/// Toggles are laid out as wide as their focus ring, everything else as wide as what they show.
constexpr int side = padding - Toggle::outset;
constexpr double dimmed = 0.45;

Toggle *boundToggle(Toggle::Look look, const QString &text, Published<bool> &property)
{
    auto *toggle = new Toggle(look, text);
    property.observe(toggle, [toggle](bool on) {
        const QSignalBlocker blocker(toggle);
        toggle->setChecked(on);
    });
    QObject::connect(toggle, &Toggle::toggled, toggle, [&property](bool on) { property = on; });
    return toggle;
}

Picker *boundPicker(const QString &name, const MetronomeMenu::Choices &choices, Published<QString> &property)
{
    auto *picker = new Picker;
    picker->setAccessibleName(name);
    for (const auto &[id, label] : choices)
        picker->addItem(label, id);
    property.observe(picker, [picker](const QString &id) { picker->display(id); });
    QObject::connect(picker, &Picker::currentIndexChanged, picker,
        [picker, &property] { property = picker->currentData().toString(); });
    return picker;
}

void addInset(QVBoxLayout &layout, QWidget *widget)
{
    auto *inset = new QHBoxLayout;
    inset->setContentsMargins(Toggle::outset, 0, Toggle::outset, 0);
    inset->addWidget(widget);
    layout.addLayout(inset);
}

} // namespace

MetronomeMenu::MetronomeMenu(
    AlphaTabController &controller, const Choices &sounds, const Choices &modes, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_knownSound(controller.metronomeSound)
{
    setFixedWidth(menuWidth);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(side, padding, side, padding);
    layout->setSpacing(14);
    layout->addWidget(boundToggle(Toggle::Look::Switch, tr("Metronome"), controller.metronome));
    layout->addWidget(makeSettings(sounds, modes));
    addInset(*layout, new Separator(Qt::Horizontal));
    layout->addWidget(makeCountIn());

    // Afterwards: views are notified of a new sound before the page receives it, and it would play the old one.
    controller.metronomeSound.onChange(this, [this](const QString &) {
        QMetaObject::invokeMethod(this, &MetronomeMenu::previewIfChanged, Qt::QueuedConnection);
    });
}

QWidget *MetronomeMenu::makeSettings(const Choices &sounds, const Choices &modes)
{
    auto *settings = new QWidget;
    auto *layout = new QVBoxLayout(settings);
    layout->setContentsMargins({});
    layout->setSpacing(12);
    addInset(*layout, boundPicker(tr("Plays on"), modes, m_controller.metronomeMode));
    addInset(*layout, makeVolume());
    addInset(*layout, boundPicker(tr("Sound"), sounds, m_controller.metronomeSound));
    layout->addWidget(boundToggle(Toggle::Look::CheckBox, tr("Accent first beat of bar"), m_controller.metronomeAccent),
        0, Qt::AlignLeft);

    auto *opacity = new QGraphicsOpacityEffect(settings);
    opacity->setOpacity(dimmed);
    settings->setGraphicsEffect(opacity);
    m_controller.metronome.observe(settings, [settings, opacity](bool on) {
        settings->setEnabled(on);
        opacity->setEnabled(!on);
    });
    return settings;
}

QWidget *MetronomeMenu::makeVolume()
{
    auto *row = new QWidget;
    // The louder loudspeaker stays on the slider's louder side.
    row->setLayoutDirection(Qt::LeftToRight);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins({});
    layout->setSpacing(8);
    layout->addWidget(new IconLabel(u"speaker.fill"_s, 16, &Theme::Colors::secondary));
    auto *volume = new Slider(0, 1, 1000, 50);
    volume->setAccessibleName(tr("Metronome volume"));
    m_controller.metronomeVolume.observe(volume, [volume](double value) { volume->display(value); });
    connect(volume, &Slider::moved, this, [this](double value) { m_controller.metronomeVolume = value; });
    layout->addWidget(volume, 1);
    layout->addWidget(new IconLabel(u"speaker.wave.3.fill"_s, 16, &Theme::Colors::secondary));
    return row;
}

QWidget *MetronomeMenu::makeCountIn()
{
    Toggle *countIn = boundToggle(Toggle::Look::Switch, tr("Count-in"), m_controller.countIn);
    m_controller.canCountIn.observe(countIn, [countIn](bool can) {
        countIn->setEnabled(can);
        countIn->setToolTip(can ? tr("Count-in before playback")
                                : tr("Count-in needs the synth — switch the sound to “Synth” to use it"));
    });
    return countIn;
}

void MetronomeMenu::previewIfChanged()
{
    if (std::exchange(m_knownSound, m_controller.metronomeSound) != m_controller.metronomeSound.value() && isVisible())
        m_controller.js(BridgeCalls::previewMetronome());
}
