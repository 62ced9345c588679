// What ESLint looks for in the page. The type checker finds undefined names, Prettier owns the layout.
import js from "@eslint/js";
import globals from "globals";

/** @type {import("eslint").Linter.Config[]} */
export default [
  js.configs.recommended,
  {
    languageOptions: { ecmaVersion: 2022, sourceType: "module", globals: globals["shared-node-browser"] },
    linterOptions: { reportUnusedDisableDirectives: "error" },
    rules: {
      curly: "error",
      eqeqeq: "error",
      "array-callback-return": "error",
      "no-constructor-return": "error",
      "no-self-compare": "error",
      "no-template-curly-in-string": "error",
      "no-unmodified-loop-condition": "error",
      "no-unreachable-loop": "error",
      "no-use-before-define": ["error", { functions: false, classes: false, variables: false }],
      "no-var": "error",
      "object-shorthand": "error",
      "prefer-const": "error",
      "require-atomic-updates": "error",
      // What is passed, or taken apart, and not needed is named with an underscore before it.
      "no-unused-vars": ["error", { argsIgnorePattern: "^_", varsIgnorePattern: "^_" }],
    },
  },
  {
    files: ["src/**"],
    languageOptions: { globals: { ...globals.browser, ...globals.worker, ...globals.audioWorklet } },
    // What the page prints is the program's log: an error line there is a fault.
    rules: { "no-console": ["error", { allow: ["warn", "error", "info", "debug"] }] },
  },
  {
    files: ["tests/**", "tools/**"],
    languageOptions: { globals: { ...globals.node, ...globals.browser } },
    // A stream that is left at its first chunk is what some tests are about.
    rules: { "no-unreachable-loop": "off" },
  },
];
