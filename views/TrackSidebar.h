#pragma once

#include "controller/TrackInfo.h"
#include "design/Surface.h"

#include <QList>

class AlphaTabController;
class QLabel;
class QVBoxLayout;
class TrackRow;

/// The tracks of the loaded score, one row each, under the score's title.
class TrackSidebar final : public Surface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TrackSidebar)

public:
    explicit TrackSidebar(AlphaTabController &controller, QWidget *parent = nullptr);

private:
    QWidget *makeList();
    void refresh(const QList<TrackInfo> &tracks);
    void rebuild(const QList<TrackInfo> &tracks);

    AlphaTabController &m_controller;
    QLabel *m_placeholder;
    QVBoxLayout *m_rowLayout;
    QList<TrackRow *> m_rows;
};
