// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { decodeText } from "../src/score-files/containers/text-encoding.js";
import { detectFormat } from "../src/score-files/formats.js";

const bytes = (text) => new TextEncoder().encode(text);
const partwise = '<score-partwise version="4.0"><part-list/></score-partwise>';

test("Guitar Pro's own formats are known by their first bytes", () => {
  assert.equal(detectFormat(bytes("\x18FICHIER GUITAR PRO v5.10\0\0")), "guitarPro");
  assert.equal(detectFormat(bytes("\x18FICHIER GUITAR PRO v3.00\0\0")), "guitarPro");
  assert.equal(detectFormat(bytes("BCFZ....")), "gpx");
  assert.equal(detectFormat(bytes("BCFS....")), "gpx");
});

test("a zip may be a Guitar Pro file or compressed MusicXML", () => {
  assert.equal(detectFormat(bytes("PK\x03\x04....")), "archive");
});

test("MusicXML is known by its root element, behind whatever comes first", () => {
  assert.equal(detectFormat(bytes(partwise)), "musicXml");
  assert.equal(detectFormat(bytes(`\ufeff<?xml version="1.0"?>\n<!-- by hand -->\n${partwise}`)), "musicXml");
  assert.equal(detectFormat(bytes('<?xml version="1.0"?><score-timewise>')), "musicXml");
});

test("MusicXML in two-byte characters is MusicXML", () => {
  const text = `\ufeff${partwise}`;
  const little = new Uint8Array(text.length * 2);
  for (let i = 0; i < text.length; i++) {
    little[2 * i] = text.charCodeAt(i) & 0xff;
    little[2 * i + 1] = text.charCodeAt(i) >> 8;
  }
  assert.equal(detectFormat(little), "musicXml");
});

test("anything else is no score, alphaTab's own text language included", () => {
  for (const text of [
    "",
    "Just a letter.",
    '\\title "Sneaky"\n.\n3.3 4.3',
    "<html><body>score-partwise</body></html>",
    "see <score-partwise> for details",
    "%PDF-1.7",
    "MThd\0\0\0\x06",
  ]) {
    assert.equal(detectFormat(bytes(text)), null, JSON.stringify(text));
  }
});

test("a text is decoded as its declaration says", () => {
  const latin = Uint8Array.from('<?xml version="1.0" encoding="ISO-8859-1"?><t>\xc9t\xe9</t>', (c) => c.charCodeAt(0));
  assert.match(decodeText(latin), /<t>Été<\/t>/);
  assert.match(decodeText(bytes('<?xml version="1.0" encoding="UTF-8"?><t>Été</t>')), /<t>Été<\/t>/);
  assert.match(decodeText(bytes('<?xml version="1.0" encoding="no-such-code"?><t>Été</t>')), /<t>Été<\/t>/);
});
