% Each system a notation staff with its tablature below; two pages.
\version "2.24.0"
\include "tune.ily"
\header { title = "Notation with tablature" tagline = ##f }
\score {
  \new StaffGroup <<
    \new Staff { \clef "treble_8" \tune }
    \new TabStaff { \tune }
  >>
  \layout {
    % Room for the notes below the staff: the margin above an erased staff is two of its spacings.
    \context { \StaffGroup \override StaffGrouper.staff-staff-spacing.basic-distance = #19 }
  }
}
