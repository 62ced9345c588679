// @ts-check
import assert from "node:assert/strict";
import { test } from "node:test";
import { CallOrder } from "../src/session/call-order.js";

test("the later call wins, whichever of them is read first", () => {
  const order = new CallOrder();
  const [first, second] = [order.begin(), order.begin()];
  assert.equal(order.succeed(second), true);
  assert.equal(order.succeed(first), false);
  assert.equal(order.counts(second), true);
  const third = order.begin();
  assert.equal(order.succeed(third), true);
  assert.equal(order.counts(second), false);
});

test("a file that cannot be read takes nobody's place", () => {
  const order = new CallOrder();
  const first = order.begin();
  order.begin();
  assert.equal(order.succeed(first), true);
  assert.equal(order.counts(first), true);
});
