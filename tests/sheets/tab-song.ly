% A voice with chord names and words over a guitar with tablature whose bar lines are not joined; systems close together.
\version "2.24.0"
\include "tab-beside.ily"
\paper { system-system-spacing.basic-distance = #8 system-system-spacing.padding = #0.5 ragged-bottom = ##t }
\header { title = "Song" tagline = ##f }
melody = \relative g' {
  \key d \major \time 3/4
  \repeat unfold 5 { d4 fis a | b2 a4 | g fis e | fis2. | a4 d cis | b2 a4 | g8 fis e4 fis | d2. }
}
names = \chordmode { \repeat unfold 5 { d2. g e:m7 d a:7 g a:7sus4 d } }
text = \lyricmode {
  \repeat unfold 5 { Slow -- ly the eve -- ning comes o -- ver the hill, all of the gar -- den is qui -- et and still }
}
guitar = {
  \key d \major \time 3/4
  \repeat unfold 5 { d8 a d' fis' d' a | g, d g b g d | e, b, e g e b, | d a d'2 | a,8 e a cis' a e | g,2. | a,8 e a d' a e | <d a d' fis'>2. }
}
\score {
  <<
    \new ChordNames \names
    \new Staff \new Voice = "sung" \melody
    \new Lyrics \lyricsto "sung" \text
    \new Staff { \clef "treble_8" \guitar }
    \new TabStaff \guitar
  >>
}
