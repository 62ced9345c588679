// Writes the song of the page's tests as Guitar Pro 3, 4 and 5 files: something of everything that these hold.
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { makeGuitarPro, song } from "../../web/tests/support/gp-maker.mjs";

for (const version of [3, 4, 5]) {
  writeFileSync(join(process.argv[2], `made.gp${version}`), makeGuitarPro(version, song));
}
