#include "views/TransportBar.h"

#include "controller/AlphaTabController.h"
#include "controller/SpeedRange.h"
#include "design/Button.h"
#include "design/DigitLabel.h"
#include "design/Gap.h"
#include "design/IconLabel.h"
#include "design/Popover.h"
#include "design/SegmentedControl.h"
#include "design/Separator.h"
#include "design/Slider.h"
#include "engine_host/bridge/BridgeCalls.h"
#include "views/MetronomeMenu.h"

#include <QHBoxLayout>
#include <QSignalBlocker>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr int dividerHeight = 18;
constexpr int smallIcon = 16;

/// The usual distance of two controls; in a narrow window the controls move together before they shrink.
void addGap(QHBoxLayout &row) { row.addItem(new Gap(5, 14)); }

void addDivider(QHBoxLayout &row)
{
    addGap(row);
    row.addWidget(new Separator(Qt::Vertical, dividerHeight));
    addGap(row);
}

} // namespace

TransportBar::TransportBar(AlphaTabController &controller, QWidget *parent)
    : Surface(&Theme::Colors::bar, parent)
    , m_controller(controller)
    , m_position(new Slider(0, 1, 10000, 100))
    , m_metronome(new Button(Button::Look::Tool))
{
    // Time runs from left to right in every language, as in the score above.
    setLayoutDirection(Qt::LeftToRight);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 10, 14, 10);
    layout->setSpacing(6);
    layout->addLayout(makePositionRow());
    layout->addLayout(makeControlRow());
}

QString TransportBar::format(double milliseconds)
{
    const double seconds = std::floor(milliseconds / 1000);
    constexpr double limit = 9223372036854775808.0; // 2^63
    if (!(seconds >= -limit && seconds < limit))
        qFatal("a time that cannot be shown: %g ms", milliseconds);
    const auto whole = static_cast<qint64>(seconds);
    return QString::asprintf("%lld:%02lld", whole / 60, whole % 60);
}

QHBoxLayout *TransportBar::makePositionRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(10);
    auto *elapsed = new DigitLabel(u"00:00"_s, Qt::AlignRight);
    auto *total = new DigitLabel(u"00:00"_s, Qt::AlignLeft);
    row->addWidget(elapsed);
    row->addWidget(m_position, 1);
    row->addWidget(total);

    m_position->setAccessibleName(tr("Position"));
    m_controller.currentTime.observe(this, [this, elapsed](double time) {
        elapsed->display(format(time));
        refreshPosition();
    });
    m_controller.endTime.observe(this, [this, total](double time) {
        total->display(format(time));
        refreshPosition();
    });
    m_controller.hasScore.observe(m_position, [this](bool hasScore) { m_position->setEnabled(hasScore); });
    connect(m_position, &Slider::settled, this, [this](double fraction) {
        m_controller.seek(fraction);
        // The slider stays where it was let go until the page reports the new position, unless there is none to come.
        if (!(m_controller.endTime > 0))
            refreshPosition();
    });
    return row;
}

void TransportBar::refreshPosition()
{
    if (!m_position->isSliderDown())
        m_position->display(m_controller.endTime > 0 ? m_controller.currentTime / m_controller.endTime : 0);
}

QHBoxLayout *TransportBar::makeControlRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(0);
    addPlayback(*row);
    addDivider(*row);
    addTempo(*row);
    addDivider(*row);
    addVolume(*row);
    addGap(*row);
    row->addStretch(1);
    addSoundSource(*row);
    addLoop(*row);
    addGap(*row);
    addMetronome(*row);
    return row;
}

void TransportBar::addPlayback(QHBoxLayout &row)
{
    auto *play = new Button(Button::Look::Prominent);
    m_controller.isPlaying.observe(play, [play](bool playing) {
        play->setIconName(playing ? u"pause.fill"_s : u"play.fill"_s);
        play->setAccessibleName(playing ? tr("Pause") : tr("Play"));
    });
    m_controller.playerReady.observe(play, [play](bool ready) { play->setEnabled(ready); });
    connect(play, &Button::clicked, this, [this] { m_controller.js(BridgeCalls::playPause()); });
    row.addWidget(play);
    addGap(row);

    auto *stop = new Button(Button::Look::Tool);
    stop->setIconName(u"stop.fill"_s);
    stop->setAccessibleName(tr("Stop"));
    m_controller.hasScore.observe(stop, [stop](bool hasScore) { stop->setEnabled(hasScore); });
    connect(stop, &Button::clicked, this, [this] { m_controller.js(BridgeCalls::stop()); });
    row.addWidget(stop);
}

void TransportBar::addTempo(QHBoxLayout &row)
{
    row.addWidget(new IconLabel(u"metronome.fill"_s, smallIcon, &Theme::Colors::secondary));
    addGap(row);
    auto *tempo = new Slider(SpeedRange::slowest, SpeedRange::fastest, 175, 1);
    tempo->setMaximumWidth(110);
    tempo->setAccessibleName(tr("Speed"));
    tempo->setUsualValue(100);
    connect(tempo, &Slider::moved, this, [this](double percent) { m_controller.tempoPercent = percent; });
    row.addWidget(tempo, 0);
    addGap(row);
    auto *label = new DigitLabel(u"100%"_s, Qt::AlignLeft);
    label->setFixedWidth(38);
    m_controller.tempoPercent.observe(tempo, [tempo, label](double percent) {
        tempo->display(percent);
        label->display(tr("%1%").arg(static_cast<qint64>(percent)));
    });
    row.addWidget(label);
}

void TransportBar::addVolume(QHBoxLayout &row)
{
    row.addWidget(new IconLabel(u"speaker.wave.2.fill"_s, smallIcon, &Theme::Colors::secondary));
    addGap(row);
    auto *volume = new Slider(0, 1, 1000, 50);
    volume->setMaximumWidth(90);
    volume->setAccessibleName(tr("Volume"));
    m_controller.masterVolume.observe(volume, [volume](double value) { volume->display(value); });
    connect(volume, &Slider::moved, this, [this](double value) { m_controller.masterVolume = value; });
    row.addWidget(volume, 0);
}

void TransportBar::addSoundSource(QHBoxLayout &row)
{
    auto *group = new QWidget;
    auto *layout = new QHBoxLayout(group);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    auto *source = new SegmentedControl({ tr("Original"), tr("Synth") });
    source->setAccessibleName(tr("Sound source"));
    source->setToolTip(tr("Play the file's original recording, or the synthesized instruments"));
    m_controller.preferSynth.observe(source, [source](bool synth) { source->display(synth ? 1 : 0); });
    connect(source, &SegmentedControl::chosen, this, [this](int index) { m_controller.preferSynth = index == 1; });
    layout->addWidget(source);
    addDivider(*layout);
    m_controller.hasBackingTrack.observe(group, [group](bool has) { group->setVisible(has); });
    row.addWidget(group);
}

void TransportBar::addLoop(QHBoxLayout &row)
{
    auto *loop = new Button(Button::Look::Tool);
    loop->setIconName(u"repeat"_s);
    loop->setCheckable(true);
    loop->setToolTip(tr("Loop selected range"));
    loop->setAccessibleName(tr("Loop selected range"));
    m_controller.looping.observe(loop, [loop](bool on) {
        const QSignalBlocker blocker(loop);
        loop->setChecked(on);
    });
    connect(loop, &Button::toggled, this, [this](bool on) { m_controller.looping = on; });
    row.addWidget(loop);
}

void TransportBar::addMetronome(QHBoxLayout &row)
{
    m_metronome->setIconName(u"metronome"_s);
    m_metronome->setToolTip(tr("Metronome & count-in"));
    m_metronome->setAccessibleName(tr("Metronome & count-in"));
    m_controller.metronome.observe(
        m_metronome, [this](bool on) { m_metronome->setTint(on ? &Theme::Colors::accent : &Theme::Colors::text); });
    connect(m_metronome, &Button::clicked, this, &TransportBar::toggleMetronomeMenu);
    row.addWidget(m_metronome);
}

void TransportBar::toggleMetronomeMenu()
{
    if (m_popover) {
        m_popover->dismiss();
        return;
    }
    const MetronomeMenu::Choices sounds{
        { u"woodblock"_s, tr("Woodblock") },
        { u"beep"_s, tr("Beep") },
        { u"click"_s, tr("Click") },
        { u"tick"_s, tr("Tick") },
    };
    const MetronomeMenu::Choices modes{
        { u"bar"_s, tr("On every bar") },
        { u"beat"_s, tr("On every beat") },
        { u"half"_s, tr("On every ½ beat") },
        { u"quarter"_s, tr("On every ¼ beat") },
    };
    m_popover = Popover::open(new MetronomeMenu(m_controller, sounds, modes), *m_metronome);
    connect(m_popover, &Popover::closed, this, [this] { m_popover = nullptr; });
}
