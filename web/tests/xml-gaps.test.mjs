// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { withoutGaps } from "../src/score-files/xml-gaps.js";

const without = (text) => new TextDecoder().decode(withoutGaps(new TextEncoder().encode(text)));

test("white space between two tags goes, text stays as it is", () => {
  assert.equal(
    without("<?xml version='1.0'?>\r\n<a>\n\t<b/>  <c> one  two </c>\n</a>\n"),
    "<?xml version='1.0'?><a><b/><c> one  two </c></a>\n",
  );
  assert.equal(without("<a>é 1 > 2 <b>\n ß</b></a>"), "<a>é 1 > 2 <b>\n ß</b></a>");
  assert.equal(without(""), "");
});

test("text that looks like tags stays as it is", () => {
  assert.equal(without("<a>\n<![CDATA[<p>  </p>]]>\n</a>"), "<a><![CDATA[<p>  </p>]]></a>");
  assert.equal(without("<a><![CDATA[]] >  <]]> </a>"), "<a><![CDATA[]] >  <]]></a>");
  assert.equal(without("<a> <![CDATA[ > < never closed"), "<a><![CDATA[ > < never closed");
});
