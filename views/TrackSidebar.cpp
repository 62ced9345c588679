#include "views/TrackSidebar.h"

#include "controller/AlphaTabController.h"
#include "design/ElidedLabel.h"
#include "views/TrackRow.h"

#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int sidePadding = 14;

bool anySolo(const QList<TrackInfo> &tracks)
{
    return std::any_of(tracks.begin(), tracks.end(), [](const TrackInfo &track) { return track.solo; });
}

} // namespace

TrackSidebar::TrackSidebar(AlphaTabController &controller, QWidget *parent)
    : Surface(&Theme::Colors::sidebar, parent)
    , m_controller(controller)
    , m_placeholder(new ElidedLabel(Theme::Type::Callout, &Theme::Colors::secondary))
    , m_rowLayout(new QVBoxLayout)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->setSpacing(0);
    auto *header = new ElidedLabel(Theme::Type::Headline, &Theme::Colors::secondary);
    header->setContentsMargins(sidePadding, 12, sidePadding, 6);
    layout->addWidget(header);
    layout->addWidget(makeList(), 1);
    m_placeholder->setText(tr("No tracks loaded"));

    controller.title.observe(
        header, [header](const QString &title) { header->setText(title.isEmpty() ? tr("Tracks") : title); });
    controller.tracks.observe(this, [this](const QList<TrackInfo> &tracks) { refresh(tracks); });
}

QWidget *TrackSidebar::makeList()
{
    auto *scroll = new QScrollArea;
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto *list = new Surface(&Theme::Colors::sidebar);
    auto *layout = new QVBoxLayout(list);
    // Margins stay on their sides where lines run from the right.
    QMargins margins(sidePadding, 0, sidePadding - TrackRow::reachRight, 10);
    if (isRightToLeft())
        margins = QMargins(margins.right(), margins.top(), margins.left(), margins.bottom());
    layout->setContentsMargins(margins);
    layout->setSpacing(0);
    layout->addWidget(m_placeholder);
    m_rowLayout->setSpacing(6);
    layout->addLayout(m_rowLayout);
    layout->addStretch();
    scroll->setWidget(list);
    return scroll;
}

void TrackSidebar::refresh(const QList<TrackInfo> &tracks)
{
    // Rows stay as long as they show the same tracks: one of their sliders may be in the user's hand.
    const auto sameTrack = [](const TrackRow *row, const TrackInfo &track) { return row->trackId() == track.id; };
    if (std::equal(m_rows.begin(), m_rows.end(), tracks.begin(), tracks.end(), sameTrack)) {
        const bool solo = anySolo(tracks);
        for (qsizetype i = 0; i < tracks.size(); ++i)
            m_rows[i]->display(tracks[i], solo);
    } else {
        rebuild(tracks);
    }
    m_placeholder->setVisible(tracks.isEmpty());
}

void TrackSidebar::rebuild(const QList<TrackInfo> &tracks)
{
    for (TrackRow *row : std::as_const(m_rows)) {
        m_rowLayout->removeWidget(row);
        // Later: one of its controls may be what brought us here.
        row->hide();
        row->deleteLater();
    }
    m_rows.clear();
    for (const TrackInfo &track : tracks) {
        auto *row = new TrackRow(m_controller, track.id);
        // Before it is laid out with the others: it takes the room of its content at once.
        row->display(track, anySolo(tracks));
        m_rowLayout->addWidget(row);
        m_rows << row;
    }
}
