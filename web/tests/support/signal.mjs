// @ts-check
/** An event of alphaTab's kind, which tests trigger. */
export class Signal {
  #receivers = [];

  on(receiver) {
    this.#receivers.push(receiver);
    return () => {};
  }

  trigger(...details) {
    this.#receivers.forEach((receiver) => receiver(...details));
  }
}
