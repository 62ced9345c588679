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
    TrackRow(AlphaTabController &controller, int id, QWidget *parent = nullptr);

    /// How far the last letter can be hit beyond its right edge, where nothing else in the row reaches.
    static constexpr int reachRight = 8;

    int trackId() const { return m_id; }
    /// Shows the state of the same track anew.
    /// @param anySolo whether some track plays solo: all that do not are silent
    void display(const TrackInfo &track, bool anySolo);

private:
    AlphaTabController &m_controller;
    const int m_id;
    Button *m_visible;
    ElidedLabel *m_name;
    Button *m_mute;
    Button *m_solo;
    Slider *m_volume;
};
