// @ts-check
// What the page shows of its own, in the user's language. The sources and the program's log speak English; "%1" stands
// for what a sentence names.

/** @type {Readonly<Record<string, Readonly<Record<string, string>>>>} */
export const texts = {
  de: {
    "Opening the score…": "Die Partitur wird geöffnet…",
    "Words by %1": "Text: %1",
    "Music by %1": "Musik: %1",
    "Words and music by %1": "Text und Musik: %1",
    "The demo score cannot be loaded.": "Das Beispiel kann nicht geladen werden.",
    "The score cannot be shown as a whole (%1).": "Die Partitur kann nicht vollständig gezeigt werden (%1).",
    "The file arrived damaged: its base64 text cannot be decoded.": "Die Datei ist beschädigt angekommen.",
    "The file is empty.": "Die Datei ist leer.",
    "The file is neither a Guitar Pro nor a MusicXML score.": "Die Datei ist weder Guitar Pro noch MusicXML.",
    "The score has no music in it.": "Die Partitur enthält keine Musik.",
    "The score file is damaged or cut short (%1).": "Die Datei ist beschädigt oder unvollständig (%1).",
    "%1 is percussion: there are no strings and no keys to show.":
      "%1 ist Schlagzeug: Es gibt weder Saiten noch Tasten zu zeigen.",
    "The score takes too long to be drawn.": "Die Partitur braucht zu lange, um gezeichnet zu werden.",
    "There is no audio output. The music plays without a sound.":
      "Es gibt keine Audioausgabe. Die Musik läuft, ohne zu klingen.",
    "There is no audio output any more. The music goes on when it is back.":
      "Es gibt keine Audioausgabe mehr. Die Musik geht weiter, wenn sie wieder da ist.",
  },
  fr: {
    "Opening the score…": "Ouverture de la partition…",
    "Words by %1": "Paroles : %1",
    "Music by %1": "Musique : %1",
    "Words and music by %1": "Paroles et musique : %1",
    "The demo score cannot be loaded.": "La démo ne peut pas être chargée.",
    "The score cannot be shown as a whole (%1).": "La partition ne peut pas être affichée en entier (%1).",
    "The file arrived damaged: its base64 text cannot be decoded.": "Le fichier est arrivé endommagé.",
    "The file is empty.": "Le fichier est vide.",
    "The file is neither a Guitar Pro nor a MusicXML score.": "Ce fichier n’est ni du Guitar Pro ni du MusicXML.",
    "The score has no music in it.": "La partition ne contient pas de musique.",
    "The score file is damaged or cut short (%1).": "Le fichier est endommagé ou incomplet (%1).",
    "%1 is percussion: there are no strings and no keys to show.":
      "%1 est une batterie : il n’y a ni cordes ni touches à montrer.",
    "The score takes too long to be drawn.": "La partition met trop de temps à se dessiner.",
    "There is no audio output. The music plays without a sound.":
      "Il n’y a pas de sortie audio. La musique se joue sans son.",
    "There is no audio output any more. The music goes on when it is back.":
      "Il n’y a plus de sortie audio. La musique reprendra quand elle sera revenue.",
  },
};

/**
 * @param {string} sentence in English, with what it names
 * @param {string} [language] such as "de" or "de-AT"; the program tells the page which
 */
export function translated(sentence, language = globalThis.navigator?.language ?? "en") {
  const known = texts[language.split("-")[0]] ?? {};
  for (const [english, translation] of Object.entries(known)) {
    const [before, after] = english.split("%1");
    if (after === undefined) {
      if (sentence === english) {
        return translation;
      }
    } else if (sentence.startsWith(before) && sentence.slice(before.length).endsWith(after)) {
      const named = sentence.slice(before.length, sentence.length - after.length);
      return translation.replace("%1", () => named);
    }
  }
  return sentence;
}
