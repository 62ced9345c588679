// @ts-check
// Reads, plays, draws and writes damaged files one after the other, and tells how each went.
import { createRequire } from "node:module";
import { parentPort } from "node:worker_threads";

globalThis.alphaTab ??= createRequire(import.meta.url)(process.env.QUAVERLY_ALPHATAB);
const { alphaTab } = globalThis;
const { readScore } = await import("../../src/score-files/score-files.js");
const { playInOrder } = await import("../../src/alphatab/play-through.js");
const { scoreOrder } = await import("../../src/playback/score-order.js");
const { exportGuitarPro } = await import("../../src/score-files/guitar-pro/export.js");

playInOrder((score) => scoreOrder(score).bars);
const settings = new alphaTab.Settings();
settings.core.engine = "svg";
settings.core.logLevel = alphaTab.LogLevel.None;
alphaTab.Logger.logLevel = alphaTab.LogLevel.None;

/** @type {Record<string, (score: any) => void>} */
const steps = {
  play: (score) => {
    const midi = new alphaTab.midi.MidiFile();
    new alphaTab.midi.MidiFileGenerator(score, settings, new alphaTab.midi.AlphaSynthMidiFileHandler(midi)).generate();
  },
  draw: (score) => {
    const renderer = new alphaTab.rendering.ScoreRenderer(settings);
    renderer.width = 900;
    let problem = null;
    renderer.error.on((error) => (problem = error));
    renderer.renderScore(
      score,
      score.tracks.map(({ index }) => index),
    );
    renderer.destroy();
    if (problem) {
      throw problem;
    }
  },
  write: (score) => exportGuitarPro(score, settings),
};

parentPort.on("message", ({ bytes }) => {
  const report = { problem: null, thrown: {} };
  const began = performance.now();
  let step = "read";
  try {
    const reading = readScore(bytes, settings);
    report.problem = reading.problem ?? null;
    report.read = performance.now() - began;
    for (const name of reading.score ? Object.keys(steps) : []) {
      step = name;
      const start = performance.now();
      try {
        steps[name](reading.score);
      } catch (error) {
        report.thrown[name] = String(error.stack).split("\n").slice(0, 3).join(" ");
      }
      report[name] = performance.now() - start;
    }
  } catch (error) {
    report.thrown[step] = String(error.stack).split("\n").slice(0, 3).join(" ");
  }
  parentPort.postMessage(report);
});
parentPort.postMessage({ ready: true });
