// @ts-check
import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";

import { texts, translated } from "../src/shared/texts.js";

/** @param {string} path */
const source = (path) => readFileSync(new URL(`../src/${path}`, import.meta.url), "utf8");

/** The sentences that readers see, as they stand in the sources. */
function shownSentences() {
  /** @type {[RegExp, string][]} */
  const patterns = [
    [/problem: (?:"([^"]+)"|`([^`]+)`)/g, source("score-files/score-files.js")],
    [/#refuse\((?:"([^"]+)"|`([^`]+)`)/g, source("session/score-session.js")],
    [/#show\("([^"]+)"/g, source("score-view/notice.js")],
    [/^const (?:lostOutput|noOutput) = "([^"]+)"/gm, source("main.js")],
    [/^const tooLong = "([^"]+)"/gm, source("rendering/worker-renderer.js")],
    [/translated\((?:"([^"]+)"|`([^`]+)`)/g, source("score-view/score-header.js")],
    [/translated\((?:"([^"]+)"|`([^`]+)`)/g, source("fretboard/fretboard.js")],
  ];
  const found = patterns.flatMap(([pattern, text]) => [...text.matchAll(pattern)].map((match) => match[1] ?? match[2]));
  return new Set(found.map((sentence) => sentence.replace(/\$\{[^}]*(?:\([^)]*\))?\}/, "%1")));
}

test("every sentence that is shown is translated into every language, and no other", () => {
  const shown = [...shownSentences()].sort();
  assert.ok(shown.length > 12, shown.join("\n"));
  for (const [language, known] of Object.entries(texts)) {
    assert.deepEqual(Object.keys(known).sort(), shown, language);
    for (const [english, translation] of Object.entries(known)) {
      assert.equal(translation.includes("%1"), english.includes("%1"), translation);
    }
  }
});

test("what a sentence names stays", () => {
  assert.equal(translated("Music by $& Söhne", "de"), "Musik: $& Söhne");
  assert.equal(translated("The file is empty.", "fr-CA"), "Le fichier est vide.");
  assert.equal(
    translated("The score file is damaged or cut short (End of data).", "de"),
    "Die Datei ist beschädigt oder unvollständig (End of data).",
  );
});

test("English, and what nobody has translated, stays as it is", () => {
  assert.equal(translated("The file is empty.", "en-US"), "The file is empty.");
  assert.equal(translated("The file is empty.", "ja"), "The file is empty.");
  assert.equal(translated("Something new.", "de"), "Something new.");
});
