#include "views/TrackRow.h"

#include "controller/AlphaTabController.h"
#include "design/Button.h"
#include "design/ElidedLabel.h"
#include "design/Slider.h"

#include <QHBoxLayout>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Half of the distance between two things in the row, which a letter takes to be easier to hit.
constexpr int reach = 4;

Button *letterButton(const QString &letter, int reachRight)
{
    auto *button = new Button(Button::Look::Plain);
    button->setReach(QMargins(reach, reach, reachRight, reach));
    button->setText(letter);
    button->setFont(Theme::font(Theme::Type::Headline));
    return button;
}

void display(Button &button, bool on)
{
    const QSignalBlocker blocker(button);
    button.setChecked(on);
}

} // namespace

TrackRow::TrackRow(AlphaTabController &controller, int id, QWidget *parent)
    : QWidget(parent)
    , m_controller(controller)
    , m_id(id)
    , m_visible(new Button(Button::Look::Plain))
    , m_name(new ElidedLabel)
    , m_mute(letterButton(u"M"_s, reach))
    , m_solo(letterButton(u"S"_s, reachRight))
    , m_volume(new Slider(0, 1, 1000, 50, Slider::Size::Mini))
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 2);
    layout->setSpacing(0);
    auto *line = new QHBoxLayout;
    line->setSpacing(0);
    line->addWidget(m_visible);
    line->addSpacing(2 * reach);
    line->addWidget(m_name, 1);
    line->addSpacing(reach);
    line->addWidget(m_mute);
    line->addWidget(m_solo);
    layout->addLayout(line);
    auto *volumeLine = new QHBoxLayout;
    volumeLine->setSpacing(0);
    volumeLine->addWidget(m_volume);
    volumeLine->addSpacing(reachRight);
    layout->addLayout(volumeLine);

    for (Button *button : { m_visible, m_mute, m_solo })
        button->setCheckable(true);
    connect(m_visible, &Button::toggled, this, [this] { m_controller.toggleVisible(m_id); });
    connect(m_mute, &Button::toggled, this, [this] { m_controller.toggleMute(m_id); });
    connect(m_solo, &Button::toggled, this, [this] { m_controller.toggleSolo(m_id); });
    connect(m_volume, &Slider::moved, this, [this](double volume) { m_controller.setTrackVolume(m_id, volume); });
}

void TrackRow::display(const TrackInfo &track, bool anySolo)
{
    const bool silencedBySolo = anySolo && !track.solo;
    const bool silent = track.mute || silencedBySolo;
    m_name->setColor(silent ? &Theme::Colors::secondary : &Theme::Colors::text);
    m_volume->setQuiet(silent);
    m_volume->setAccessibleDescription(silencedBySolo ? tr("Silent: another track plays solo") : QString());
    ::display(*m_visible, track.visible);
    m_visible->setIconName(track.visible ? u"checkmark.square.fill"_s : u"square"_s);
    m_visible->setTint(track.visible ? &Theme::Colors::accent : &Theme::Colors::secondary);
    ::display(*m_mute, track.mute);
    m_mute->setTint(track.mute ? &Theme::Colors::muted : &Theme::Colors::secondary);
    ::display(*m_solo, track.solo);
    m_solo->setTint(track.solo ? &Theme::Colors::accent : &Theme::Colors::secondary);
    m_volume->display(track.volume);
    if (m_name->text() == track.name && !m_visible->accessibleName().isEmpty())
        return;
    m_name->setText(track.name);
    m_visible->setAccessibleName(tr("Show %1").arg(track.name));
    m_mute->setAccessibleName(tr("Mute %1").arg(track.name));
    m_solo->setAccessibleName(tr("Solo %1").arg(track.name));
    m_volume->setAccessibleName(tr("Volume of %1").arg(track.name));
}
