// What the page wishes, gathered until the next picture: dragging asks for hundreds of places a second.

const holdTime = 400; // [ms] in which the engine's answers to older wishes may still come

export class Outbox {
  #connection;
  #wishes = {};
  #waits = false;
  #held = new Map(); // name -> time until which what the engine says of it is older than what the hand did

  constructor(connection) {
    this.#connection = connection;
  }

  control(name, value) {
    this.#hold(`control ${name}`);
    this.#wishes.controls = { ...this.#wishes.controls, [name]: value };
    this.#send();
  }

  source(index, change) {
    this.#hold(`source ${index}`);
    const sources = (this.#wishes.sources ??= []);
    const waiting = sources.find((source) => source.index === index);
    if (waiting) Object.assign(waiting, change);
    else sources.push({ index, ...change });
    this.#send();
  }

  listener(change) {
    this.#hold("listener");
    this.#wishes.listener = { ...this.#wishes.listener, ...change };
    this.#send();
  }

  /** Everything else: {preset: "hall"}. At once. */
  wish(message) {
    this.#connection.send(message);
  }

  /** Whether a thing is in the user's hand. */
  holds(name) {
    return (this.#held.get(name) ?? 0) > performance.now();
  }

  #hold(name) {
    this.#held.set(name, performance.now() + holdTime);
  }

  #send() {
    if (this.#waits) return;
    this.#waits = true;
    setTimeout(() => {
      this.#waits = false;
      this.#connection.send(this.#wishes);
      this.#wishes = {};
    }, 15);
  }
}
