#pragma once

/// What looping loops, in milliseconds of score time; nothing while both are 0.
struct LoopSpan {
    double startMs = 0;
    double endMs = 0;

    bool operator==(const LoopSpan &) const = default;
};
