#pragma once

#include "tests/engine/PageTest.h"

#include <QPoint>

/// What tests of the score in its view share: looking at it, and using the mouse on it.
class SheetTest : public PageTest {
    Q_OBJECT

protected:
    /// Makes a call, and waits until the score has been drawn anew.
    void redraw(const QString &script);
    /// How many parts the range that is shown has: one for each line.
    int ranges();
    /// How far the score is scrolled down, in CSS pixels.
    int scrolled();
    /// Whether the bar with the cursor begins in the upper half of the view.
    bool cursorInView();
    /// Where a note head is drawn in the first line; all bars are alike, four quarter notes each.
    QPoint beatAt(int bar, int beat);
    /// What takes the mouse and the keys.
    QWidget *target();
    void click(QPoint at, Qt::KeyboardModifiers modifiers = {});
    void drag(QPoint from, QPoint to);
};
