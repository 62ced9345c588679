#pragma once

#include <QString>

/// A section of the score, as the score marks it: "Intro", "Verse".
struct ScoreSection {
    QString title;
    /// Where it is played for the first time, in milliseconds of score time.
    double start = 0;
};
