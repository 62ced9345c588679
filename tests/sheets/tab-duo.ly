% Two guitars, each with its tablature, in one system that a bracket and bar lines hold together.
\version "2.24.0"
\include "tab-beside.ily"
\header { title = "Duo" tagline = ##f }
first = { \key a \major \time 2/4 \repeat unfold 6 { a'8 b' cis''4 | e''8 cis'' a'4 | fis'8 gis' a' b' | e'2 } }
second = { \key a \major \time 2/4 \repeat unfold 6 { a,4 e | a, cis | d,8 fis, a, d | e,2 } }
\score {
  <<
    \new StaffGroup << \new Staff { \clef "treble_8" \first } \new TabStaff \first >>
    \new StaffGroup << \new Staff { \clef "treble_8" \second } \new TabStaff \with { stringTunings = \stringTuning <d, a, d g b e'> } \second >>
  >>
}
