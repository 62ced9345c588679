#pragma once

#include <QColor>
#include <QFont>
#include <QMargins>

class QPainter;
class QPalette;
class QRectF;
class QWidget;

/// The look of the window in one place: colours, type sizes, distances, the focus ring.
///
/// Lengths are device-independent pixels. Colours follow the palette, so that the window turns dark or light together
/// with the system: nothing here is remembered between two paintings.
namespace Theme {

struct Colors {
    /// Where there is nothing: start screen, score area.
    QColor canvas;
    /// Behind the pages of a score or of a PDF.
    QColor viewport;
    QColor bar;
    QColor sidebar;
    QColor popover;
    QColor separator;
    /// Around a menu, a picker's list, a tooltip: windows of their own, above anything.
    QColor edge;
    QColor text;
    QColor secondary;
    QColor disabled;
    /// The words of a button that cannot be pressed now: faint, and still to be read on `fill`.
    QColor unavailable;
    /// The body of a button, a picker, an empty groove.
    QColor fill;
    /// Laid over what is under the pointer, and under the pressed pointer.
    QColor hover;
    QColor pressed;
    QColor accent;
    /// What is drawn on top of the accent colour.
    QColor onAccent;
    /// A switch that is on.
    QColor positive;
    QColor muted;
    /// The knob of a slider or a switch.
    QColor knob;
    QColor knobRim;
    QColor shadow;
};

/// A colour by its role; resolved at painting time.
using Role = QColor Colors::*;

bool isDark(const QPalette &palette);
const Colors &colors(const QPalette &palette);
/// A palette of the dark colours, for a system that asks for them and has no palette itself.
QPalette darkPalette();

enum class Type { Caption, Body, Callout, Headline, Title };
/// The application's font in one of the sizes.
QFont font(Type type);

inline constexpr int radius = 7;
inline constexpr int controlHeight = 30;
inline constexpr int iconSize = 18;

/// Gives the application the style that draws all of this; later calls do nothing.
void install();

/// Whether to paint `widget` as usable. Something that lies in a part of the window which is dimmed as a whole is:
/// twice faint would be illegible.
bool paintsEnabled(const QWidget &widget);

/// A ring just inside `rect`.
void paintFocusRing(QPainter &painter, const QRectF &rect, qreal cornerRadius, const QPalette &palette);

} // namespace Theme
