<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE">
<context>
    <name>AboutPanel</name>
    <message>
        <source>About Quaverly</source>
        <translation>Über Quaverly</translation>
    </message>
    <message>
        <source>Practise guitar from scores.</source>
        <translation>Gitarre üben nach Noten.</translation>
    </message>
    <message>
        <source>Licences</source>
        <translation>Lizenzen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>AlphaTabController</name>
    <message>
        <source>Audiveris (the music-recognition engine) was not found. Download it from %1 and move Audiveris.app into /Applications, then try again.</source>
        <translation>Audiveris (das Programm zur Notenerkennung) wurde nicht gefunden. Laden Sie es von %1 herunter, verschieben Sie Audiveris.app nach /Applications und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>%1 (converted)</source>
        <translation>%1 (umgewandelt)</translation>
    </message>
    <message>
        <source>Could not save: %1</source>
        <translation>Speichern nicht möglich: %1</translation>
    </message>
    <message>
        <source>The score could not be printed.</source>
        <translation>Die Partitur konnte nicht gedruckt werden.</translation>
    </message>
</context>
<context>
    <name>BridgeMessages</name>
    <message>
        <source>Track %1</source>
        <translation>Spur %1</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Practise guitar from scores.</source>
        <translation>Gitarre üben nach Noten.</translation>
    </message>
    <message>
        <source>The Guitar Pro, MusicXML or PDF file to open.</source>
        <translation>Die Guitar-Pro-, MusicXML- oder PDF-Datei, die geöffnet werden soll.</translation>
    </message>
</context>
<context>
    <name>ContentView</name>
    <message>
        <source>Conversion</source>
        <translation>Umwandlung</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>EmptyState</name>
    <message>
        <source>Open a Guitar Pro file, MusicXML, or PDF</source>
        <translation>Guitar-Pro-Datei, MusicXML oder PDF öffnen</translation>
    </message>
    <message>
        <source>Drag a .gp / .gp3–.gp5 / .gpx / .mxl / .pdf file here, or:</source>
        <translation>Ziehen Sie eine Datei (.gp / .gp3–.gp5 / .gpx / .mxl / .pdf) hierher, oder:</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen…</translation>
    </message>
    <message>
        <source>Try the demo</source>
        <translation>Beispiel ausprobieren</translation>
    </message>
</context>
<context>
    <name>EngineView</name>
    <message>
        <source>Inspect</source>
        <translation>Untersuchen</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspektor</translation>
    </message>
    <message>
        <source>Score</source>
        <translation>Noten</translation>
    </message>
</context>
<context>
    <name>FileDialogs</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Scores and sheet music</source>
        <translation>Partituren und Notenblätter</translation>
    </message>
    <message>
        <source>Export as Guitar Pro</source>
        <translation>Als Guitar Pro exportieren</translation>
    </message>
    <message>
        <source>Guitar Pro files</source>
        <translation>Guitar-Pro-Dateien</translation>
    </message>
</context>
<context>
    <name>FileReading</name>
    <message>
        <source>The file is larger than 200 MB.</source>
        <translation>Die Datei ist größer als 200 MB.</translation>
    </message>
</context>
<context>
    <name>GuideWindow</name>
    <message>
        <source>Guide</source>
        <translation>Handbuch</translation>
    </message>
</context>
<context>
    <name>MetronomeMenu</name>
    <message>
        <source>Metronome</source>
        <translation>Metronom</translation>
    </message>
    <message>
        <source>Plays on</source>
        <translation>Schlägt</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Klang</translation>
    </message>
    <message>
        <source>Accent first beat of bar</source>
        <translation>Ersten Schlag im Takt betonen</translation>
    </message>
    <message>
        <source>Metronome volume</source>
        <translation>Lautstärke des Metronoms</translation>
    </message>
    <message>
        <source>Count-in</source>
        <translation>Einzähler</translation>
    </message>
    <message>
        <source>Count-in needs the synth — switch the sound to “Synth” to use it</source>
        <translation>Der Einzähler braucht den Synthesizer — stellen Sie den Klang dafür auf „Synth“</translation>
    </message>
    <message>
        <source>Count-in before playback</source>
        <translation>Vor der Wiedergabe einzählen</translation>
    </message>
</context>
<context>
    <name>PDFConverter</name>
    <message>
        <source>The folder %1 could not be made: %2.</source>
        <translation>Der Ordner %1 konnte nicht angelegt werden: %2.</translation>
    </message>
    <message>
        <source>Unexpected MusicXML layout from Audiveris.</source>
        <translation>Audiveris hat MusicXML in unerwarteter Form geliefert.</translation>
    </message>
    <message>
        <source>Could not encode a page image.</source>
        <translation>Das Bild einer Seite konnte nicht kodiert werden.</translation>
    </message>
    <message>
        <source>Could not write a page image.</source>
        <translation>Das Bild einer Seite konnte nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>Could not rasterize a PDF page.</source>
        <translation>Eine PDF-Seite konnte nicht gerastert werden.</translation>
    </message>
    <message>
        <source>Empty PDF page.</source>
        <translation>Leere PDF-Seite.</translation>
    </message>
    <message>
        <source>Could not launch Audiveris: %1</source>
        <translation>Audiveris konnte nicht gestartet werden: %1</translation>
    </message>
    <message>
        <source>The conversion was stopped.</source>
        <translation>Die Umwandlung wurde abgebrochen.</translation>
    </message>
    <message>
        <source>Audiveris failed.</source>
        <translation>Audiveris ist gescheitert.</translation>
    </message>
    <message>
        <source>Could not unpack %1.</source>
        <translation>%1 konnte nicht entpackt werden.</translation>
    </message>
</context>
<context>
    <name>PDFPageCell</name>
    <message>
        <source>This page cannot be drawn.</source>
        <translation>Diese Seite lässt sich nicht darstellen.</translation>
    </message>
</context>
<context>
    <name>PDFPageSidebar</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
</context>
<context>
    <name>PDFSheetView</name>
    <message>
        <source>Sheet music</source>
        <translation>Noten</translation>
    </message>
</context>
<context>
    <name>PDFToolbarControls</name>
    <message>
        <source>Pages</source>
        <translation>Seiten</translation>
    </message>
    <message>
        <source>How many pages to show side by side</source>
        <translation>Wie viele Seiten nebeneinander gezeigt werden</translation>
    </message>
    <message>
        <source>Convert to Guitar Pro</source>
        <translation>In Guitar Pro umwandeln</translation>
    </message>
    <message>
        <source>Read the notation with Audiveris and open it as an interactive score (beta)</source>
        <translation>Die Noten mit Audiveris lesen und als spielbare Partitur öffnen (Beta)</translation>
    </message>
    <message>
        <source>Reading the sheet music…</source>
        <translation>Die Noten werden gelesen…</translation>
    </message>
    <message>
        <source>%1, for %2</source>
        <translation>%1, seit %2</translation>
    </message>
</context>
<context>
    <name>PageFailure</name>
    <message>
        <source>The score view has ended</source>
        <translation>Die Partituransicht ist abgestürzt</translation>
    </message>
    <message>
        <source>It could not be started again. Quit Quaverly and open it anew: your files and settings are safe.</source>
        <translation>Sie ließ sich nicht wieder starten. Beenden Sie Quaverly und öffnen Sie es neu: Ihre Dateien und Einstellungen sind sicher.</translation>
    </message>
    <message>
        <source>Your files and settings are safe. The score comes back as it was, at the same place.</source>
        <translation>Ihre Dateien und Einstellungen sind sicher. Die Partitur kommt wieder, wie sie war, an derselben Stelle.</translation>
    </message>
    <message>
        <source>Your files and settings are safe.</source>
        <translation>Ihre Dateien und Einstellungen sind sicher.</translation>
    </message>
    <message>
        <source>Start again</source>
        <translation>Neu starten</translation>
    </message>
    <message>
        <source>The score view does not answer</source>
        <translation>Die Partituransicht antwortet nicht</translation>
    </message>
    <message>
        <source>It may still be reading a large score. You can wait, or stop it.</source>
        <translation>Vielleicht liest sie noch eine große Partitur. Sie können warten oder das Lesen abbrechen.</translation>
    </message>
    <message>
        <source>Stop reading</source>
        <translation>Lesen abbrechen</translation>
    </message>
</context>
<context>
    <name>PageList</name>
    <message>
        <source>Page %1</source>
        <translation>Seite %1</translation>
    </message>
</context>
<context>
    <name>PlaybackMenu</name>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Wiedergabe</translation>
    </message>
    <message>
        <source>To the Start</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>Previous Beat</source>
        <translation>Voriger Schlag</translation>
    </message>
    <message>
        <source>Next Beat</source>
        <translation>Nächster Schlag</translation>
    </message>
    <message>
        <source>Previous Bar</source>
        <translation>Voriger Takt</translation>
    </message>
    <message>
        <source>Next Bar</source>
        <translation>Nächster Takt</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Voriger Abschnitt</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Nächster Abschnitt</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Abschnitte</translation>
    </message>
    <message>
        <source>Slower</source>
        <translation>Langsamer</translation>
    </message>
    <message>
        <source>Faster</source>
        <translation>Schneller</translation>
    </message>
    <message>
        <source>A Little Slower</source>
        <translation>Ein wenig langsamer</translation>
    </message>
    <message>
        <source>A Little Faster</source>
        <translation>Ein wenig schneller</translation>
    </message>
    <message>
        <source>Written Speed</source>
        <translation>Notiertes Tempo</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Schleife</translation>
    </message>
    <message>
        <source>Metronome</source>
        <translation>Metronom</translation>
    </message>
    <message>
        <source>Count-in</source>
        <translation>Einzähler</translation>
    </message>
</context>
<context>
    <name>PracticeMenu</name>
    <message>
        <source>P&amp;ractice</source>
        <translation>&amp;Üben</translation>
    </message>
    <message>
        <source>Show a Track Alone</source>
        <translation>Eine Spur allein zeigen</translation>
    </message>
    <message>
        <source>Solo</source>
        <translation>Solo</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Stumm</translation>
    </message>
    <message>
        <source>Speed Trainer…</source>
        <translation>Tempotrainer…</translation>
    </message>
    <message>
        <source>Remember Each Piece</source>
        <translation>Jedes Stück merken</translation>
    </message>
    <message>
        <source>Turn by Half Pages</source>
        <translation>Halbe Seiten blättern</translation>
    </message>
    <message>
        <source>Passage Begins Here</source>
        <translation>Stelle beginnt hier</translation>
    </message>
    <message>
        <source>Passage Ends Here</source>
        <translation>Stelle endet hier</translation>
    </message>
    <message>
        <source>Passage a Beat Shorter</source>
        <translation>Stelle einen Schlag kürzer</translation>
    </message>
    <message>
        <source>Passage a Beat Longer</source>
        <translation>Stelle einen Schlag länger</translation>
    </message>
    <message>
        <source>Passage a Bar Shorter</source>
        <translation>Stelle einen Takt kürzer</translation>
    </message>
    <message>
        <source>Passage a Bar Longer</source>
        <translation>Stelle einen Takt länger</translation>
    </message>
    <message>
        <source>Let Go of the Passage</source>
        <translation>Stelle loslassen</translation>
    </message>
</context>
<context>
    <name>PrintPanel</name>
    <message>
        <source>Print</source>
        <translation>Drucken</translation>
    </message>
</context>
<context>
    <name>ProblemReport</name>
    <message>
        <source>Report a Problem</source>
        <translation>Problem melden</translation>
    </message>
    <message>
        <source>What helps to understand the problem is now on the clipboard: versions, your system, and the last lines of the log, which may hold names of files.</source>
        <translation>In der Zwischenablage liegt jetzt, was hilft, das Problem zu verstehen: Versionen, Ihr System und die letzten Zeilen des Protokolls, in denen Dateinamen stehen können.</translation>
    </message>
    <message>
        <source>Paste it into your report, and write what you did and what you expected.</source>
        <translation>Fügen Sie es in Ihre Meldung ein und schreiben Sie dazu, was Sie getan und was Sie erwartet haben.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>QuaverlyApp</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen…</translation>
    </message>
    <message>
        <source>Export as Guitar Pro…</source>
        <translation>Als Guitar Pro exportieren…</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>Report a Problem</source>
        <translation>Problem melden</translation>
    </message>
    <message>
        <source>About Quaverly</source>
        <translation>Über Quaverly</translation>
    </message>
    <message>
        <source>Guide</source>
        <translation>Handbuch</translation>
    </message>
    <message>
        <source>Print…</source>
        <translation>Drucken…</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
</context>
<context>
    <name>RecentFilesList</name>
    <message>
        <source>Recent</source>
        <translation>Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
<context>
    <name>RecentFilesMenu</name>
    <message>
        <source>Open Recent</source>
        <translation>Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
<context>
    <name>ScreenAwake</name>
    <message>
        <source>Music is playing</source>
        <translation>Musik wird wiedergegeben</translation>
    </message>
</context>
<context>
    <name>ShortcutsWindow</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Play or pause</source>
        <translation>Abspielen oder anhalten</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Make the score larger or smaller</source>
        <translation>Die Noten größer oder kleiner zeigen</translation>
    </message>
    <message>
        <source>Ctrl and the wheel</source>
        <translation>Strg und das Mausrad</translation>
    </message>
    <message>
        <source>From control to control</source>
        <translation>Von Bedienelement zu Bedienelement</translation>
    </message>
    <message>
        <source>Tab, Shift+Tab</source>
        <translation>Tab, Umschalt+Tab</translation>
    </message>
    <message>
        <source>Move the slider that has the focus</source>
        <translation>Den Regler mit dem Fokus bewegen</translation>
    </message>
    <message>
        <source>Up, Down</source>
        <translation>Auf, Ab</translation>
    </message>
    <message>
        <source>Everywhere in the window</source>
        <translation>Überall im Fenster</translation>
    </message>
</context>
<context>
    <name>Toolbar</name>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Demo</source>
        <translation>Beispiel</translation>
    </message>
    <message>
        <source>Horizontal</source>
        <translation>Horizontal</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Vergrößern</translation>
    </message>
</context>
<context>
    <name>TrackRow</name>
    <message>
        <source>Silent: another track plays solo</source>
        <translation>Stumm: Eine andere Spur spielt solo</translation>
    </message>
    <message>
        <source>Show %1</source>
        <translation>%1 zeigen</translation>
    </message>
    <message>
        <source>Mute %1</source>
        <translation>%1 stummschalten</translation>
    </message>
    <message>
        <source>Solo %1</source>
        <translation>%1 solo</translation>
    </message>
    <message>
        <source>Volume of %1</source>
        <translation>Lautstärke von %1</translation>
    </message>
</context>
<context>
    <name>TrackSidebar</name>
    <message>
        <source>No tracks loaded</source>
        <translation>Keine Spuren geladen</translation>
    </message>
    <message>
        <source>Tracks</source>
        <translation>Spuren</translation>
    </message>
</context>
<context>
    <name>TrainerPanel</name>
    <message>
        <source> %</source>
        <extracomment>Behind a number of percent.</extracomment>
        <translation> %</translation>
    </message>
    <message>
        <source>Count in before each pass</source>
        <translation>Vor jedem Durchgang einzählen</translation>
    </message>
    <message>
        <source>Back to the first speed when stopped</source>
        <translation>Nach dem Anhalten zurück zum ersten Tempo</translation>
    </message>
    <message>
        <source>Speed Trainer</source>
        <translation>Tempotrainer</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>From</source>
        <translation>Von</translation>
    </message>
    <message>
        <source>To</source>
        <translation>Bis</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Schritt</translation>
    </message>
    <message>
        <source>Passes per step</source>
        <translation>Durchgänge je Schritt</translation>
    </message>
    <message>
        <source>End Training</source>
        <translation>Training beenden</translation>
    </message>
    <message>
        <source>Begin Training</source>
        <translation>Training beginnen</translation>
    </message>
    <message>
        <source>Choose a passage, then begin.</source>
        <translation>Wählen Sie eine Stelle, dann beginnen Sie.</translation>
    </message>
    <message>
        <source>%1 %: the last speed</source>
        <translation>%1 %: das letzte Tempo</translation>
    </message>
    <message>
        <source>%1 %, pass %2 of %3</source>
        <translation>%1 %, Durchgang %2 von %3</translation>
    </message>
</context>
<context>
    <name>TransportBar</name>
    <message>
        <source>Position</source>
        <translation>Position</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Stopp</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1&#x202f;%</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Lautstärke</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Synth</source>
        <translation>Synth</translation>
    </message>
    <message>
        <source>Sound source</source>
        <translation>Klangquelle</translation>
    </message>
    <message>
        <source>Play the file&apos;s original recording, or the synthesized instruments</source>
        <translation>Die Originalaufnahme der Datei abspielen oder die synthetischen Instrumente</translation>
    </message>
    <message>
        <source>Loop selected range</source>
        <translation>Ausgewählten Bereich wiederholen</translation>
    </message>
    <message>
        <source>Metronome &amp; count-in</source>
        <translation>Metronom &amp; Einzähler</translation>
    </message>
    <message>
        <source>Woodblock</source>
        <translation>Holzblock</translation>
    </message>
    <message>
        <source>Beep</source>
        <translation>Piepton</translation>
    </message>
    <message>
        <source>Click</source>
        <translation>Klick</translation>
    </message>
    <message>
        <source>Tick</source>
        <translation>Tick</translation>
    </message>
    <message>
        <source>On every bar</source>
        <translation>Auf jeden Takt</translation>
    </message>
    <message>
        <source>On every beat</source>
        <translation>Auf jeden Schlag</translation>
    </message>
    <message>
        <source>On every ½ beat</source>
        <translation>Auf jeden ½ Schlag</translation>
    </message>
    <message>
        <source>On every ¼ beat</source>
        <translation>Auf jeden ¼ Schlag</translation>
    </message>
</context>
<context>
    <name>UnsavedMenu</name>
    <message>
        <source>Settings cannot be saved</source>
        <translation>Einstellungen nicht speicherbar</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <comment>a file, and why it cannot be saved</comment>
        <translation>%1: %2</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Erneut versuchen</translation>
    </message>
</context>
<context>
    <name>ViewMenu</name>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Vergrößern</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Verkleinern</translation>
    </message>
    <message>
        <source>Natural Size</source>
        <translation>Natürliche Größe</translation>
    </message>
    <message>
        <source>Horizontal</source>
        <translation>Horizontal</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Vollbild</translation>
    </message>
    <message>
        <source>Fretboard</source>
        <translation>Griffbrett</translation>
    </message>
    <message>
        <source>Left-Handed Fretboard</source>
        <translation>Griffbrett für Linkshänder</translation>
    </message>
    <message>
        <source>Dark Paper</source>
        <translation>Dunkles Papier</translation>
    </message>
    <message>
        <source>Notation and Tablature</source>
        <translation>Noten und Tabulatur</translation>
    </message>
    <message>
        <source>Tablature Only</source>
        <translation>Nur Tabulatur</translation>
    </message>
    <message>
        <source>Notation Only</source>
        <translation>Nur Noten</translation>
    </message>
    <message>
        <source>Staves</source>
        <translation>Notensysteme</translation>
    </message>
    <message>
        <source>Next Staves</source>
        <translation>Nächste Notensysteme</translation>
    </message>
    <message>
        <source>Page Up</source>
        <translation>Seite zurück</translation>
    </message>
    <message>
        <source>Page Down</source>
        <translation>Seite weiter</translation>
    </message>
</context>
<context>
    <name>WebEngineHost</name>
    <message>
        <source>en</source>
        <extracomment>The code of this language. The page speaks it too.</extracomment>
        <translation>de</translation>
    </message>
</context>
</TS>
