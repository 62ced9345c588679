// @ts-check
/**
 * The worker in which the synthesizer runs. It is there early and reads its code when it is wanted: a worker comes into
 * being only when the page has time for it, but reads beside whatever the page does.
 */

// alphaTab receives messages here too, for commands of its own, none of which is this one.
addEventListener("message", async ({ data }) => {
  if (data.cmd === "serve") {
    const { serve } = await import("./synth-service.js");
    serve(data.page, data.audioThread, data.ring);
  }
});
