#pragma once

#include "design/Surface.h"

#include <QPointer>

class AlphaTabController;
class Button;
class DigitLabel;
class Popover;
class QHBoxLayout;
class Slider;

/// The strip under the score: where the music is, and everything that makes it play.
class TransportBar final : public Surface {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(TransportBar)

public:
    explicit TransportBar(AlphaTabController &controller, QWidget *parent = nullptr);

    /// Minutes, a colon and two digits of seconds; there are no hours. Negative times keep the sign in each part, and
    /// a time that is no number or that no 64-bit count of seconds can hold ends the program: the page reports none.
    static QString format(double milliseconds);

private:
    QHBoxLayout *makePositionRow();
    QHBoxLayout *makeControlRow();
    void addPlayback(QHBoxLayout &row);
    void addTempo(QHBoxLayout &row);
    void addVolume(QHBoxLayout &row);
    void addSoundSource(QHBoxLayout &row);
    void addLoop(QHBoxLayout &row);
    void addMetronome(QHBoxLayout &row);
    void refreshPosition();
    void toggleMetronomeMenu();

    AlphaTabController &m_controller;
    Slider *m_position;
    Button *m_metronome;
    QPointer<Popover> m_popover;
};
