% Bar lines that run through notation and tablature, notes down to the low E, repeats, a second voice.
\version "2.24.0"
\include "tab-beside.ily"
\header { title = "Joined" tagline = ##f }
upper = {
  \key g \major \time 4/4 \tempo 4 = 100
  \repeat unfold 2 {
  \repeat volta 2 {
    e,1 | g8 b d' g' b'4 r | <e, b, e g b e'>2 f,4 g, | b'8 c'' d'' e'' d''4( b') |
  }
  \repeat volta 2 {
    \tuplet 3/2 { e,8 f, g, } \tuplet 3/2 { a, b, c } d2 | e,4. fis,8 g,2 | c'16 b a g fis4 e2 | e,1 |
  }
  }
}
lower = { \repeat unfold 2 { e,1 | g,2. r4 | s1 | e,2 g, | a,1 | s1 | e,2. r4 | s1 } }
\score {
  \new StaffGroup <<
    \new Staff { \clef "treble_8" << \upper \\ \lower >> }
    \new TabStaff << \upper \\ \lower >>
  >>
}
