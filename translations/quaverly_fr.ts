<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr_FR">
<context>
    <name>AboutPanel</name>
    <message>
        <source>About Quaverly</source>
        <translation>À propos de Quaverly</translation>
    </message>
    <message>
        <source>Practise guitar from scores.</source>
        <translation>Travailler la guitare avec des partitions.</translation>
    </message>
    <message>
        <source>Licences</source>
        <translation>Licences</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
</context>
<context>
    <name>AlphaTabController</name>
    <message>
        <source>Audiveris (the music-recognition engine) was not found. Download it from %1 and move Audiveris.app into /Applications, then try again.</source>
        <translation>Audiveris (le programme de reconnaissance musicale) est introuvable. Téléchargez-le depuis&#xa0;%1, placez Audiveris.app dans /Applications, puis réessayez.</translation>
    </message>
    <message>
        <source>%1 (converted)</source>
        <translation>%1 (converti)</translation>
    </message>
    <message>
        <source>Could not save: %1</source>
        <translation>Enregistrement impossible&#xa0;:&#xa0;%1</translation>
    </message>
    <message>
        <source>The score could not be printed.</source>
        <translation>La partition n’a pas pu être imprimée.</translation>
    </message>
</context>
<context>
    <name>BridgeMessages</name>
    <message>
        <source>Track %1</source>
        <translation>Piste&#xa0;%1</translation>
    </message>
</context>
<context>
    <name>CommandLine</name>
    <message>
        <source>Practise guitar from scores.</source>
        <translation>Travailler la guitare avec des partitions.</translation>
    </message>
    <message>
        <source>The Guitar Pro, MusicXML or PDF file to open.</source>
        <translation>Le fichier Guitar Pro, MusicXML ou PDF à ouvrir.</translation>
    </message>
</context>
<context>
    <name>ContentView</name>
    <message>
        <source>Conversion</source>
        <translation>Conversion</translation>
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
        <translation>Ouvrez un fichier Guitar Pro, MusicXML ou PDF</translation>
    </message>
    <message>
        <source>Drag a .gp / .gp3–.gp5 / .gpx / .mxl / .pdf file here, or:</source>
        <translation>Déposez ici un fichier .gp / .gp3–.gp5 / .gpx / .mxl / .pdf, ou&#xa0;:</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Ouvrir…</translation>
    </message>
    <message>
        <source>Try the demo</source>
        <translation>Essayer la démo</translation>
    </message>
</context>
<context>
    <name>EngineView</name>
    <message>
        <source>Inspect</source>
        <translation>Inspecter</translation>
    </message>
    <message>
        <source>Inspector</source>
        <translation>Inspecteur</translation>
    </message>
    <message>
        <source>Score</source>
        <translation>Partition</translation>
    </message>
</context>
<context>
    <name>FileDialogs</name>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Scores and sheet music</source>
        <translation>Partitions</translation>
    </message>
    <message>
        <source>Export as Guitar Pro</source>
        <translation>Exporter en Guitar Pro</translation>
    </message>
    <message>
        <source>Guitar Pro files</source>
        <translation>Fichiers Guitar Pro</translation>
    </message>
</context>
<context>
    <name>FileReading</name>
    <message>
        <source>The file is larger than 200 MB.</source>
        <translation>Le fichier dépasse 200 Mo.</translation>
    </message>
</context>
<context>
    <name>GuideWindow</name>
    <message>
        <source>Guide</source>
        <translation>Guide</translation>
    </message>
</context>
<context>
    <name>MetronomeMenu</name>
    <message>
        <source>Metronome</source>
        <translation>Métronome</translation>
    </message>
    <message>
        <source>Plays on</source>
        <translation>Joue</translation>
    </message>
    <message>
        <source>Sound</source>
        <translation>Son</translation>
    </message>
    <message>
        <source>Accent first beat of bar</source>
        <translation>Accentuer le premier temps</translation>
    </message>
    <message>
        <source>Metronome volume</source>
        <translation>Volume du métronome</translation>
    </message>
    <message>
        <source>Count-in</source>
        <translation>Décompte</translation>
    </message>
    <message>
        <source>Count-in needs the synth — switch the sound to “Synth” to use it</source>
        <translation>Le décompte nécessite le synthétiseur — passez le son sur «&#xa0;Synthé&#xa0;» pour l’utiliser</translation>
    </message>
    <message>
        <source>Count-in before playback</source>
        <translation>Décompte avant la lecture</translation>
    </message>
</context>
<context>
    <name>PDFConverter</name>
    <message>
        <source>The folder %1 could not be made: %2.</source>
        <translation>Le dossier&#xa0;%1 n’a pas pu être créé&#xa0;:&#xa0;%2.</translation>
    </message>
    <message>
        <source>Unexpected MusicXML layout from Audiveris.</source>
        <translation>Audiveris a produit du MusicXML d’une forme inattendue.</translation>
    </message>
    <message>
        <source>Could not encode a page image.</source>
        <translation>L’image d’une page n’a pas pu être encodée.</translation>
    </message>
    <message>
        <source>Could not write a page image.</source>
        <translation>L’image d’une page n’a pas pu être écrite.</translation>
    </message>
    <message>
        <source>Could not rasterize a PDF page.</source>
        <translation>Une page du PDF n’a pas pu être convertie en image.</translation>
    </message>
    <message>
        <source>Empty PDF page.</source>
        <translation>Page de PDF vide.</translation>
    </message>
    <message>
        <source>Could not launch Audiveris: %1</source>
        <translation>Audiveris n’a pas pu être lancé&#xa0;:&#xa0;%1</translation>
    </message>
    <message>
        <source>The conversion was stopped.</source>
        <translation>La conversion a été interrompue.</translation>
    </message>
    <message>
        <source>Audiveris failed.</source>
        <translation>Audiveris a échoué.</translation>
    </message>
    <message>
        <source>Could not unpack %1.</source>
        <translation>%1 n’a pas pu être décompressé.</translation>
    </message>
</context>
<context>
    <name>PDFPageCell</name>
    <message>
        <source>This page cannot be drawn.</source>
        <translation>Cette page ne peut pas être affichée.</translation>
    </message>
</context>
<context>
    <name>PDFPageSidebar</name>
    <message>
        <source>Pages</source>
        <translation>Pages</translation>
    </message>
</context>
<context>
    <name>PDFSheetView</name>
    <message>
        <source>Sheet music</source>
        <translation>Partition</translation>
    </message>
</context>
<context>
    <name>PDFToolbarControls</name>
    <message>
        <source>Pages</source>
        <translation>Pages</translation>
    </message>
    <message>
        <source>How many pages to show side by side</source>
        <translation>Nombre de pages affichées côte à côte</translation>
    </message>
    <message>
        <source>Convert to Guitar Pro</source>
        <translation>Convertir en Guitar Pro</translation>
    </message>
    <message>
        <source>Read the notation with Audiveris and open it as an interactive score (beta)</source>
        <translation>Lire la notation avec Audiveris et l’ouvrir comme partition interactive (bêta)</translation>
    </message>
    <message>
        <source>Reading the sheet music…</source>
        <translation>Lecture de la partition…</translation>
    </message>
    <message>
        <source>%1, for %2</source>
        <translation>%1, depuis&#xa0;%2</translation>
    </message>
</context>
<context>
    <name>PageFailure</name>
    <message>
        <source>The score view has ended</source>
        <translation>La vue de la partition s’est arrêtée</translation>
    </message>
    <message>
        <source>It could not be started again. Quit Quaverly and open it anew: your files and settings are safe.</source>
        <translation>Elle n’a pas pu redémarrer. Quittez Quaverly et rouvrez-le : vos fichiers et vos réglages sont intacts.</translation>
    </message>
    <message>
        <source>Your files and settings are safe. The score comes back as it was, at the same place.</source>
        <translation>Vos fichiers et vos réglages sont intacts. La partition reviendra telle quelle, au même endroit.</translation>
    </message>
    <message>
        <source>Your files and settings are safe.</source>
        <translation>Vos fichiers et vos réglages sont intacts.</translation>
    </message>
    <message>
        <source>Start again</source>
        <translation>Redémarrer</translation>
    </message>
    <message>
        <source>The score view does not answer</source>
        <translation>La vue de la partition ne répond pas</translation>
    </message>
    <message>
        <source>It may still be reading a large score. You can wait, or stop it.</source>
        <translation>Elle lit peut-être encore une grande partition. Vous pouvez attendre ou l’interrompre.</translation>
    </message>
    <message>
        <source>Stop reading</source>
        <translation>Interrompre la lecture</translation>
    </message>
</context>
<context>
    <name>PageList</name>
    <message>
        <source>Page %1</source>
        <translation>Page&#xa0;%1</translation>
    </message>
</context>
<context>
    <name>PlaybackMenu</name>
    <message>
        <source>&amp;Playback</source>
        <translation>&amp;Lecture</translation>
    </message>
    <message>
        <source>To the Start</source>
        <translation>Au début</translation>
    </message>
    <message>
        <source>Previous Beat</source>
        <translation>Temps précédent</translation>
    </message>
    <message>
        <source>Next Beat</source>
        <translation>Temps suivant</translation>
    </message>
    <message>
        <source>Previous Bar</source>
        <translation>Mesure précédente</translation>
    </message>
    <message>
        <source>Next Bar</source>
        <translation>Mesure suivante</translation>
    </message>
    <message>
        <source>Previous Section</source>
        <translation>Section précédente</translation>
    </message>
    <message>
        <source>Next Section</source>
        <translation>Section suivante</translation>
    </message>
    <message>
        <source>Sections</source>
        <translation>Sections</translation>
    </message>
    <message>
        <source>Slower</source>
        <translation>Plus lentement</translation>
    </message>
    <message>
        <source>Faster</source>
        <translation>Plus vite</translation>
    </message>
    <message>
        <source>A Little Slower</source>
        <translation>Un peu plus lentement</translation>
    </message>
    <message>
        <source>A Little Faster</source>
        <translation>Un peu plus vite</translation>
    </message>
    <message>
        <source>Written Speed</source>
        <translation>Tempo écrit</translation>
    </message>
    <message>
        <source>Loop</source>
        <translation>Boucle</translation>
    </message>
    <message>
        <source>Metronome</source>
        <translation>Métronome</translation>
    </message>
    <message>
        <source>Count-in</source>
        <translation>Décompte</translation>
    </message>
</context>
<context>
    <name>PracticeMenu</name>
    <message>
        <source>P&amp;ractice</source>
        <translation>&amp;Exercice</translation>
    </message>
    <message>
        <source>Show a Track Alone</source>
        <translation>Afficher une piste seule</translation>
    </message>
    <message>
        <source>Solo</source>
        <translation>Solo</translation>
    </message>
    <message>
        <source>Mute</source>
        <translation>Muet</translation>
    </message>
    <message>
        <source>Speed Trainer…</source>
        <translation>Entraîneur de vitesse…</translation>
    </message>
    <message>
        <source>Remember Each Piece</source>
        <translation>Mémoriser chaque morceau</translation>
    </message>
    <message>
        <source>Turn by Half Pages</source>
        <translation>Tourner par demi-pages</translation>
    </message>
    <message>
        <source>Passage Begins Here</source>
        <translation>Le passage commence ici</translation>
    </message>
    <message>
        <source>Passage Ends Here</source>
        <translation>Le passage finit ici</translation>
    </message>
    <message>
        <source>Passage a Beat Shorter</source>
        <translation>Passage plus court d’un temps</translation>
    </message>
    <message>
        <source>Passage a Beat Longer</source>
        <translation>Passage plus long d’un temps</translation>
    </message>
    <message>
        <source>Passage a Bar Shorter</source>
        <translation>Passage plus court d’une mesure</translation>
    </message>
    <message>
        <source>Passage a Bar Longer</source>
        <translation>Passage plus long d’une mesure</translation>
    </message>
    <message>
        <source>Let Go of the Passage</source>
        <translation>Abandonner le passage</translation>
    </message>
</context>
<context>
    <name>PrintPanel</name>
    <message>
        <source>Print</source>
        <translation>Imprimer</translation>
    </message>
</context>
<context>
    <name>ProblemReport</name>
    <message>
        <source>Report a Problem</source>
        <translation>Signaler un problème</translation>
    </message>
    <message>
        <source>What helps to understand the problem is now on the clipboard: versions, your system, and the last lines of the log, which may hold names of files.</source>
        <translation>Le presse-papiers contient maintenant de quoi comprendre le problème&#xa0;: les versions, votre système et les dernières lignes du journal, où peuvent figurer des noms de fichiers.</translation>
    </message>
    <message>
        <source>Paste it into your report, and write what you did and what you expected.</source>
        <translation>Collez-le dans votre rapport, en précisant ce que vous avez fait et ce que vous attendiez.</translation>
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
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Ouvrir…</translation>
    </message>
    <message>
        <source>Export as Guitar Pro…</source>
        <translation>Exporter en Guitar Pro…</translation>
    </message>
    <message>
        <source>Quit</source>
        <translation>Quitter</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Aide</translation>
    </message>
    <message>
        <source>Report a Problem</source>
        <translation>Signaler un problème</translation>
    </message>
    <message>
        <source>About Quaverly</source>
        <translation>À propos de Quaverly</translation>
    </message>
    <message>
        <source>Guide</source>
        <translation>Guide</translation>
    </message>
    <message>
        <source>Print…</source>
        <translation>Imprimer…</translation>
    </message>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Raccourcis clavier</translation>
    </message>
</context>
<context>
    <name>RecentFilesList</name>
    <message>
        <source>Recent</source>
        <translation>Récents</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Effacer</translation>
    </message>
</context>
<context>
    <name>RecentFilesMenu</name>
    <message>
        <source>Open Recent</source>
        <translation>Fichiers récents</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Effacer</translation>
    </message>
</context>
<context>
    <name>ScreenAwake</name>
    <message>
        <source>Music is playing</source>
        <translation>Lecture de musique en cours</translation>
    </message>
</context>
<context>
    <name>ShortcutsWindow</name>
    <message>
        <source>Keyboard Shortcuts</source>
        <translation>Raccourcis clavier</translation>
    </message>
    <message>
        <source>Play or pause</source>
        <translation>Lire ou mettre en pause</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Espace</translation>
    </message>
    <message>
        <source>Make the score larger or smaller</source>
        <translation>Agrandir ou réduire la partition</translation>
    </message>
    <message>
        <source>Ctrl and the wheel</source>
        <translation>Ctrl et la molette</translation>
    </message>
    <message>
        <source>From control to control</source>
        <translation>D’une commande à l’autre</translation>
    </message>
    <message>
        <source>Tab, Shift+Tab</source>
        <translation>Tab, Maj+Tab</translation>
    </message>
    <message>
        <source>Move the slider that has the focus</source>
        <translation>Déplacer le curseur qui a le focus</translation>
    </message>
    <message>
        <source>Up, Down</source>
        <translation>Haut, Bas</translation>
    </message>
    <message>
        <source>Everywhere in the window</source>
        <translation>Partout dans la fenêtre</translation>
    </message>
</context>
<context>
    <name>Toolbar</name>
    <message>
        <source>Open</source>
        <translation>Ouvrir</translation>
    </message>
    <message>
        <source>Demo</source>
        <translation>Démo</translation>
    </message>
    <message>
        <source>Horizontal</source>
        <translation>Horizontal</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Réduire</translation>
    </message>
    <message>
        <source>Zoom in</source>
        <translation>Agrandir</translation>
    </message>
</context>
<context>
    <name>TrackRow</name>
    <message>
        <source>Silent: another track plays solo</source>
        <translation>Muette&#xa0;: une autre piste joue en solo</translation>
    </message>
    <message>
        <source>Show %1</source>
        <translation>Afficher&#xa0;%1</translation>
    </message>
    <message>
        <source>Mute %1</source>
        <translation>Couper&#xa0;%1</translation>
    </message>
    <message>
        <source>Solo %1</source>
        <translation>%1 en solo</translation>
    </message>
    <message>
        <source>Volume of %1</source>
        <translation>Volume de&#xa0;%1</translation>
    </message>
</context>
<context>
    <name>TrackSidebar</name>
    <message>
        <source>No tracks loaded</source>
        <translation>Aucune piste chargée</translation>
    </message>
    <message>
        <source>Tracks</source>
        <translation>Pistes</translation>
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
        <translation>Décompter avant chaque passage</translation>
    </message>
    <message>
        <source>Back to the first speed when stopped</source>
        <translation>Revenir à la première vitesse à l’arrêt</translation>
    </message>
    <message>
        <source>Speed Trainer</source>
        <translation>Entraîneur de vitesse</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>From</source>
        <translation>De</translation>
    </message>
    <message>
        <source>To</source>
        <translation>À</translation>
    </message>
    <message>
        <source>Step</source>
        <translation>Pas</translation>
    </message>
    <message>
        <source>Passes per step</source>
        <translation>Passages par pas</translation>
    </message>
    <message>
        <source>End Training</source>
        <translation>Terminer l’entraînement</translation>
    </message>
    <message>
        <source>Begin Training</source>
        <translation>Commencer l’entraînement</translation>
    </message>
    <message>
        <source>Choose a passage, then begin.</source>
        <translation>Choisissez un passage, puis commencez.</translation>
    </message>
    <message>
        <source>%1 %: the last speed</source>
        <translation>%1 % : la dernière vitesse</translation>
    </message>
    <message>
        <source>%1 %, pass %2 of %3</source>
        <translation>%1 %, passage %2 sur %3</translation>
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
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Arrêt</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Vitesse</translation>
    </message>
    <message>
        <source>%1%</source>
        <translation>%1&#x202f;%</translation>
    </message>
    <message>
        <source>Volume</source>
        <translation>Volume</translation>
    </message>
    <message>
        <source>Original</source>
        <translation>Original</translation>
    </message>
    <message>
        <source>Synth</source>
        <translation>Synthé</translation>
    </message>
    <message>
        <source>Sound source</source>
        <translation>Source sonore</translation>
    </message>
    <message>
        <source>Play the file&apos;s original recording, or the synthesized instruments</source>
        <translation>Jouer l’enregistrement original du fichier ou les instruments de synthèse</translation>
    </message>
    <message>
        <source>Loop selected range</source>
        <translation>Répéter la sélection en boucle</translation>
    </message>
    <message>
        <source>Metronome &amp; count-in</source>
        <translation>Métronome &amp; décompte</translation>
    </message>
    <message>
        <source>Woodblock</source>
        <translation>Woodblock</translation>
    </message>
    <message>
        <source>Beep</source>
        <translation>Bip</translation>
    </message>
    <message>
        <source>Click</source>
        <translation>Clic</translation>
    </message>
    <message>
        <source>Tick</source>
        <translation>Tic</translation>
    </message>
    <message>
        <source>On every bar</source>
        <translation>À chaque mesure</translation>
    </message>
    <message>
        <source>On every beat</source>
        <translation>À chaque temps</translation>
    </message>
    <message>
        <source>On every ½ beat</source>
        <translation>À chaque ½ temps</translation>
    </message>
    <message>
        <source>On every ¼ beat</source>
        <translation>À chaque ¼ de temps</translation>
    </message>
</context>
<context>
    <name>UnsavedMenu</name>
    <message>
        <source>Settings cannot be saved</source>
        <translation>Réglages impossibles à enregistrer</translation>
    </message>
    <message>
        <source>%1: %2</source>
        <comment>a file, and why it cannot be saved</comment>
        <translation>%1 : %2</translation>
    </message>
    <message>
        <source>Try Again</source>
        <translation>Réessayer</translation>
    </message>
</context>
<context>
    <name>ViewMenu</name>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Pause</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Lecture</translation>
    </message>
    <message>
        <source>Zoom In</source>
        <translation>Agrandir</translation>
    </message>
    <message>
        <source>Zoom Out</source>
        <translation>Réduire</translation>
    </message>
    <message>
        <source>Natural Size</source>
        <translation>Taille naturelle</translation>
    </message>
    <message>
        <source>Horizontal</source>
        <translation>Horizontal</translation>
    </message>
    <message>
        <source>Full Screen</source>
        <translation>Plein écran</translation>
    </message>
    <message>
        <source>Fretboard</source>
        <translation>Manche</translation>
    </message>
    <message>
        <source>Left-Handed Fretboard</source>
        <translation>Manche pour gauchers</translation>
    </message>
    <message>
        <source>Dark Paper</source>
        <translation>Papier sombre</translation>
    </message>
    <message>
        <source>Notation and Tablature</source>
        <translation>Notation et tablature</translation>
    </message>
    <message>
        <source>Tablature Only</source>
        <translation>Tablature seule</translation>
    </message>
    <message>
        <source>Notation Only</source>
        <translation>Notation seule</translation>
    </message>
    <message>
        <source>Staves</source>
        <translation>Portées</translation>
    </message>
    <message>
        <source>Next Staves</source>
        <translation>Portées suivantes</translation>
    </message>
    <message>
        <source>Page Up</source>
        <translation>Page précédente</translation>
    </message>
    <message>
        <source>Page Down</source>
        <translation>Page suivante</translation>
    </message>
</context>
<context>
    <name>WebEngineHost</name>
    <message>
        <source>en</source>
        <extracomment>The code of this language. The page speaks it too.</extracomment>
        <translation>fr</translation>
    </message>
</context>
</TS>
