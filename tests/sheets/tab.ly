% Tablature only.
\version "2.24.0"
\include "tune.ily"
\header { title = "Tablature alone" tagline = ##f }
\score { \new TabStaff { \tabFullNotation \tune } }
