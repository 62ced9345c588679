#pragma once

struct GrayBitmap;

namespace PDFConverter {

/// Gives a page back what eraseTabStaves took of its notation, and takes away what it left of the tablature.
///
/// The eraser works on whole rows. Notes below a staff, lyrics and chord names of the next system lie in them, while
/// bar lines that join notation and tablature stay as stubs, and stems of tablature beyond its margin. Here every patch
/// of ink between two staves belongs to the one that it touches or hangs on to, and only the tablature's goes.
/// Everything else is, to the pixel, as it was rendered. Strokes that run on through tablature to notation below stay
/// whole: they make several staves one system.
///
/// Takes the time of a few passes over the pixels. Belongs to the resolution of the eraser.
/// @param rendering the page as it was before the eraser
/// @param page the same page, on which the eraser has painted a staff white
void mendPage(const GrayBitmap &rendering, GrayBitmap &page);

} // namespace PDFConverter
