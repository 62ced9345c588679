// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { deflateRawSync } from "node:zlib";
import { attributes, bytesOf, document, note, notesOf, played, read } from "./support/musicxml-maker.mjs";
import { zipOf } from "./support/zip-maker.mjs";
import { decodeText } from "../src/score-files/containers/text-encoding.js";
import { inflate } from "../src/score-files/containers/inflate.js";
import { scanXml } from "../src/score-files/containers/xml-scanner.js";

const bar = ["C4", "D4", "E4", "F4"].map((name) => note(name, 1)).join("");
const sound = "0:60 1:62 2:64 3:65";

test("values beyond all reason are read as if they were not there", () => {
  const huge = ["1000000000", "99999999999999999999", "-7", "1e300", "NaN", ""];
  for (const value of huge) {
    const cases = {
      staff: document([attributes() + bar.replace("</note>", `<staff>${value}</staff></note>`)]),
      voice: document([attributes() + bar.replaceAll("<voice>1</voice>", `<voice>${value}</voice>`)]),
      staves: document([attributes(1, 4, `<staves>${value}</staves>`) + bar]),
      lines: document([attributes(1, 4, `<staff-details><staff-lines>${value}</staff-lines></staff-details>`) + bar]),
      frame: document([
        attributes() +
          `<harmony><root><root-step>C</root-step></root><frame><frame-strings>${value}</frame-strings><frame-note><string>${value}</string><fret>${value}</fret></frame-note></frame></harmony>` +
          bar,
      ]),
      backup: document([attributes() + `<backup><duration>${value}</duration></backup>` + bar]),
      tempo: document([attributes() + `<sound tempo="${value}"/>` + bar]),
      offset: document([
        attributes() +
          `<direction><direction-type><words>x</words></direction-type><offset>${value}</offset></direction>` +
          bar,
      ]),
      repeat: document([attributes() + bar, `<barline><repeat direction="backward" times="${value}"/></barline>`]),
    };
    for (const [name, text] of Object.entries(cases)) {
      const { score, problem } = read(text);
      assert.equal(problem, undefined, `${name} ${value}`);
      const bars = score.masterBars.reduce((sum, { start }) => Math.max(sum, start), 0);
      assert.ok(bars <= 960 * 1024, `${name} ${value}: bars begin up to ${bars}`);
      assert.ok(notesOf(score).length <= 4 * 64, `${name} ${value}`);
      assert.ok(
        score.tracks[0].staves.length <= 8 && score.tracks[0].staves[0].bars[0].voices.length <= 8,
        `${name} ${value}`,
      );
    }
  }
});

test("a length that no note has is taken from what the note looks like", () => {
  const text = document([attributes() + note("C4", 1e20, { after: "<type>quarter</type>" }) + note("D4", 3)]);
  assert.equal(played(text), "0:60 1:62");
});

test("a metre that no piece has is left out", () => {
  for (const beats of ["1000000000", "0", "-4", "x"]) {
    const { score } = read(document([attributes(1, beats) + bar]));
    assert.deepEqual(
      [score.masterBars[0].timeSignatureNumerator, score.masterBars[0].timeSignatureDenominator],
      [4, 4],
      beats,
    );
  }
});

test("keys are the ones that exist", () => {
  const text = document([attributes() + note("C4", 1).replace("<octave>4", "<octave>1000000000") + note("D4", 3)]);
  const keys = notesOf(read(text).score).map(({ key }) => key);
  assert.ok(
    keys.every((key) => key >= 0 && key <= 127),
    keys.join(" "),
  );
});

test("a bar with more notes than any score needs is refused with a sentence", () => {
  assert.match(
    read(document([attributes() + note("C4", 1).repeat(5000)])).problem,
    /^The score file is damaged .*more notes than any score needs/,
  );
});

test("entities of a document are never expanded", () => {
  const head =
    '<!DOCTYPE score-partwise [<!ENTITY a "aaaaaaaaaa"><!ENTITY b "&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;"><!ENTITY c "&b;&b;&b;&b;">]>';
  assert.equal(
    played(document([attributes() + bar.replace("</note>", "<lyric><text>&c;la</text></lyric></note>")], { head })),
    sound,
  );
  assert.equal(scanXml(`${head}<t a="&c;x&#65;">&c;y&amp;&#x42;</t>`).text, "y&B");
});

test("documents that are not well-formed, or break off, are refused", () => {
  const whole = document([attributes() + bar]);
  for (const text of [
    whole.slice(0, -40),
    whole.replace("</pitch>", "</pitchy>"),
    whole.replace('number="1"', "number=1"),
    `${whole}<x/>`,
  ]) {
    assert.match(read(text).problem, /well-formed XML/);
  }
  assert.match(read(`<score-partwise>${"<x>".repeat(300)}${"</x>".repeat(300)}</score-partwise>`).problem, /too deep/);
});

test("a file that says one encoding and has another is read in the one that it has", () => {
  const text = (declared) => `<?xml version="1.0" encoding="${declared}"?><t>Été ♯</t>`;
  const wide = (source, little) =>
    Uint8Array.from(
      [...source].flatMap((c) =>
        little ? [c.charCodeAt(0) & 255, c.charCodeAt(0) >> 8] : [c.charCodeAt(0) >> 8, c.charCodeAt(0) & 255],
      ),
    );
  const cases = [
    bytesOf(text("UTF-16")),
    bytesOf(`\ufeff${text("UTF-8")}`),
    wide(text("UTF-8"), true),
    wide(text("UTF-16"), false),
    wide(`\ufeff${text("UTF-16")}`, true),
    wide(`\ufeff${text("ISO-8859-1")}`, false),
  ];
  for (const bytes of cases) {
    assert.match(decodeText(bytes), /<t>Été ♯<\/t>$/);
  }
  const latin = Uint8Array.from(
    [...'<?xml version="1.0" encoding="UTF-8"?><t>Été etc.</t>'].map((c) => c.charCodeAt(0)),
  );
  assert.match(decodeText(latin), /<t>Été etc.<\/t>/);
  assert.equal(played(wide(document([attributes() + bar]), true)), sound);
});

test("what a compressed file packs is unpacked exactly, within its bound", () => {
  let seed = 7;
  const random = () => (seed = (seed * 1103515245 + 12345) & 0x7fffffff) / 0x7fffffff;
  for (const data of [
    new Uint8Array(0),
    bytesOf("a".repeat(100000)),
    Uint8Array.from({ length: 70000 }, () => random() * 256),
    bytesOf(document(Array(50).fill(bar))),
  ]) {
    for (const level of [0, 1, 9]) {
      assert.deepEqual(Buffer.from(inflate(deflateRawSync(data, { level }), 1 << 20)), Buffer.from(data));
    }
  }
  const bomb = deflateRawSync(new Uint8Array(1 << 22), { level: 9 });
  assert.throws(() => inflate(bomb, 1 << 20), /more than any score needs/);
  assert.throws(() => inflate(bomb.subarray(0, 100), 1 << 23), /breaks off|damaged/);
});

test("compressed MusicXML is read by its container", () => {
  const text = document([attributes() + bar]);
  const container = '<container><rootfiles><rootfile full-path="music/score.xml"/></rootfiles></container>';
  assert.equal(
    played(zipOf({ "META-INF/container.xml": container, "other.xml": "<x/>", "music/score.xml": text })),
    sound,
  );
  assert.equal(played(zipOf({ "score.musicxml": text })), sound);
  assert.match(
    read(zipOf({ "META-INF/container.xml": container, "music/score.xml": text.slice(0, 300) })).problem,
    /well-formed/,
  );
});
