#pragma once

#include <QWidget>

class AlphaTabController;
class Button;
class ElidedLabel;
class Slider;
struct TrackInfo;

/// One track: shown or hidden, muted, soloed, and how loud.
class TrackRow final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrackRow)

public:
    TrackRow(AlphaTabController &controller, const TrackInfo &track, QWidget *parent = nullptr);

    int trackId() const { return m_id; }
    /// Shows the state of the same track anew.
    void display(const TrackInfo &track);

private:
    AlphaTabController &m_controller;
    const int m_id;
    Button *m_visible;
    ElidedLabel *m_name;
    Button *m_mute;
    Button *m_solo;
    Slider *m_volume;
};
