#pragma once

#include <QList>
#include <QMenu>

#include <functional>

class AlphaTabController;
struct TrackInfo;

/// One thing that can be done with each of the first nine tracks, by its number.
class TrackMenu final : public QMenu {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrackMenu)

public:
    /// @param modifier before the number: "Shift+", or nothing
    /// @param isOn whether the item has a tick
    /// @param choose called with a track's id
    TrackMenu(AlphaTabController &controller, const QString &title, const QString &modifier,
        std::function<bool(const TrackInfo &)> isOn, const std::function<void(int id)> &choose, QWidget *parent);
    ~TrackMenu() override;

private:
    void refresh();

    AlphaTabController &m_controller;
    const std::function<bool(const TrackInfo &)> m_isOn;
};
