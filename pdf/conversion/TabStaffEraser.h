#pragma once

struct GrayBitmap;

namespace PDFConverter {

/// Paints the tablature staves of a page white, in place, when the page carries notation staves too.
///
/// Tablature has a clearly larger line spacing than notation. Where the staves of the page fall into two groups by
/// spacing, the wider group is taken for tablature. It needs nothing but the pixels at 600 dots per inch, to which its
/// constants belong. True when something was painted; otherwise the bitmap is what it was.
bool eraseTabStaves(GrayBitmap &bitmap);

} // namespace PDFConverter
