// @ts-check
// Makes small sound banks in the SoundFont format, with everything spelled out that a real one has.

const text = (value, length) => Buffer.concat([Buffer.from(value, "latin1"), Buffer.alloc(length)], length);
const words = (...values) => Buffer.from(Uint16Array.from(values.map((value) => value & 0xffff)).buffer);
const longs = (...values) => Buffer.from(Uint32Array.from(values).buffer);
const chunk = (id, body) => Buffer.concat([Buffer.from(id), longs(body.length), body]);
const list = (id, form, ...parts) => chunk(id, Buffer.concat([Buffer.from(form), ...parts]));

/**
 * Zones as records with an end each.
 *
 * @param {[number, number][][]} zones generators and amounts
 */
function zoneChunks(bag, mod, gen, zones) {
  let next = 0;
  const bags = [...zones.map((zone) => (next += zone.length) - zone.length), next].map((index) => words(index, 0));
  return [
    chunk(bag, Buffer.concat(bags)),
    chunk(mod, Buffer.alloc(10)),
    chunk(gen, Buffer.concat([...zones.flat().map((entry) => words(...entry)), words(0, 0)])),
  ];
}

/**
 * @param {object} bank
 * @param {{ name: string, bank: number, program: number, zones: [number, number][][] }[]} bank.presets
 * @param {[number, number][][][]} bank.instruments zones of each
 * @param {{ bytes: Uint8Array, loop: [number, number], rate: number, root: number, correction: number, type: number }[]} bank.samples
 *     streams, whose loops count from their own beginning
 */
export function makeBank({ presets, instruments, samples }) {
  let zone = 0;
  const bagOf = (zones) => (zone += zones.length) - zones.length;
  const presetHeads = presets.map(({ name, program, bank, zones }) =>
    Buffer.concat([text(name, 20), words(program, bank, bagOf(zones)), Buffer.alloc(12)]),
  );
  const presetEnd = Buffer.concat([text("EOP", 20), words(0, 0, zone), Buffer.alloc(12)]);
  zone = 0;
  const instrumentHeads = instruments.map((zones, index) =>
    Buffer.concat([text(`I${index}`, 20), words(bagOf(zones))]),
  );
  const instrumentEnd = Buffer.concat([text("EOI", 20), words(zone)]);
  let at = 0;
  const sampleHeads = samples.map(({ bytes, loop, rate, root, correction, type }, index) => {
    const start = at;
    at += bytes.length;
    return Buffer.concat([
      text(`S${index}`, 20),
      longs(start, at, ...loop, rate),
      Buffer.from(Int8Array.from([root, correction]).buffer),
      words(0, type),
    ]);
  });
  return list(
    "RIFF",
    "sfbk",
    list(
      "LIST",
      "INFO",
      chunk("INAM", text("Hand-made", 10)),
      chunk("ICOP", text("Nobody", 6)),
      chunk("ICMT", text("Free.", 6)),
    ),
    list("LIST", "sdta", chunk("smpl", Buffer.concat(samples.map(({ bytes }) => bytes)))),
    list(
      "LIST",
      "pdta",
      chunk("phdr", Buffer.concat([...presetHeads, presetEnd])),
      ...zoneChunks(
        "pbag",
        "pmod",
        "pgen",
        presets.flatMap(({ zones }) => zones),
      ),
      chunk("inst", Buffer.concat([...instrumentHeads, instrumentEnd])),
      ...zoneChunks("ibag", "imod", "igen", instruments.flat()),
      chunk("shdr", Buffer.concat([...sampleHeads, Buffer.alloc(46)])),
    ),
  );
}
