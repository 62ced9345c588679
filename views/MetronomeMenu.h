#pragma once

#include <QList>
#include <QString>
#include <QWidget>

#include <utility>

class AlphaTabController;

/// The metronome's settings and the count-in, for a popover.
class MetronomeMenu final : public QWidget {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MetronomeMenu)

public:
    /// What is stored, and what the user reads.
    using Choices = QList<std::pair<QString, QString>>;

    MetronomeMenu(
        AlphaTabController &controller, const Choices &sounds, const Choices &modes, QWidget *parent = nullptr);

private:
    QWidget *makeSettings(const Choices &sounds, const Choices &modes);
    QWidget *makeVolume();
    QWidget *makeCountIn();
    void previewIfChanged();

    AlphaTabController &m_controller;
    /// The sound that was last heard or chosen, to tell a change from an assignment of the same.
    QString m_knownSound;
};
