// @ts-check
/**
 * Takes the constructors of peer connections (WebRTC) away. A classic script that runs before all others: Chromium sends
 * for peer connections without asking the page's policy or the program.
 */
for (const name of Object.getOwnPropertyNames(globalThis)) {
  if (/^(webkit|moz)?RTC/.test(name)) {
    Reflect.deleteProperty(globalThis, name);
  }
}
