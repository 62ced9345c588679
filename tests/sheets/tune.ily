% One strain for guitar, again and again: more than a page of A4.
tune = {
  \key g \major
  \time 4/4
  \repeat unfold 6 {
    g8 b d' g' b' g' d' b | c8 e g c' e' c' g e | a,8 c e a c' a e c | d8 fis a d' fis' d' a fis |
    e4 g8 b e'4 d' | c'8 b a g fis4 d | g,8 b, d g b d' g' b' | <g, b, d g b g'>1 |
  }
  \bar "|."
}
