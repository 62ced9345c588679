% Notation with tablature. With -e '(define-public hide-tablature #t)' everything of the tablature becomes transparent,
% and the bar lines and brackets between the staves: what shows then is, to the pixel, what has to stay of the page when
% the tablature is taken off it.
#(use-modules (guile-user))

#(define (transparent grobs)
   (ly:make-context-mod
    (if (and (defined? 'hide-tablature) hide-tablature)
        (map (lambda (grob) (list 'push grob #t 'transparent)) grobs)
        '())))

tabHidden = #(transparent
              '(StaffSymbol TabNoteHead Clef BarLine TimeSignature KeySignature Stem Beam Flag Dots Rest MultiMeasureRest
                TupletBracket TupletNumber Slur Tie RepeatTie LaissezVibrerTie Glissando StemTremolo StringNumber Script
                TextScript))
groupHidden = #(transparent '(SpanBar SystemStartBracket SystemStartBrace))
scoreHidden = #(transparent '(SystemStartBar))

\layout {
  indent = 0
  \context { \TabStaff #tabHidden }
  \context { \TabVoice #tabHidden }
  \context { \StaffGroup #groupHidden }
  \context { \Score #scoreHidden }
  \context { \Voice \omit StringNumber }
}
