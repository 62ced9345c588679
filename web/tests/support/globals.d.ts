/** alphaTab, which the page loads before its modules, and the tests too. */
declare var alphaTab: typeof import("@coderline/alphatab");
