% Each system a notation staff with its tablature below; two pages.
\version "2.24.0"
\include "tune.ily"
\header { title = "Notation with tablature" tagline = ##f }
\score {
  \new StaffGroup <<
    \new Staff { \clef "treble_8" \tune }
    \new TabStaff { \tune }
  >>
}
