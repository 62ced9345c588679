% Notation only, two pages.
\version "2.24.0"
\include "tune.ily"
\header { title = "Notation alone" tagline = ##f }
\score { \new Staff { \clef "treble_8" \tune } }
\pageBreak
\score { \new Staff { \clef "treble_8" \tune } }
