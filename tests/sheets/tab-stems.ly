% Tablature with stems, beams, rests and tuplets of its own; chord names over the staff.
\version "2.24.0"
\include "tab-beside.ily"
\header { title = "Stems" tagline = ##f }
piece = {
  \key c \major \time 4/4
  \repeat unfold 4 {
    c8 e g c' e' c' g e | \tuplet 3/2 { a,8 c e } \tuplet 3/2 { a e c } a,4 r | f,8. c16 f8 a c'4. r8 |
    g,16 b, d g b d' g' d' g,2 | e,2. e,4 | f,4 g, a,8 b, c d |
  }
}
names = \chordmode { \repeat unfold 4 { c1 a:m f g e:m f2 g } }
\score {
  \new StaffGroup <<
    \new ChordNames \names
    \new Staff { \clef "treble_8" \piece }
    \new TabStaff { \tabFullNotation \piece }
  >>
}
