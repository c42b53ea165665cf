// What a page and an audio worklet have in common: a ring of messages to the room, and its report.

/** Numbers of a message: target (a kind in the upper half, which one in the lower), x, y, z. */
export const messageWords = 4;

const capacity = 1024; // messages, a power of two

/** Messages from one writer to one reader, in memory that both share. */
export class Ring {
  #counts; // messages written, messages read: both only grow
  #numbers;
  // The message that was read last.
  target = 0;
  x = 0;
  y = 0;
  z = 0;

  static memory() {
    return new SharedArrayBuffer(8 + 4 * messageWords * capacity);
  }

  constructor(memory) {
    this.#counts = new Int32Array(memory, 0, 2);
    this.#numbers = new Float32Array(memory, 8);
  }

  /** @returns {boolean} false if the ring is full, and the message isn't in it */
  write(target, x, y, z) {
    const written = this.#counts[0];
    if (((written - Atomics.load(this.#counts, 1)) | 0) >= capacity) return false;
    const at = (written & (capacity - 1)) * messageWords;
    this.#numbers[at] = target;
    this.#numbers[at + 1] = x;
    this.#numbers[at + 2] = y;
    this.#numbers[at + 3] = z;
    Atomics.store(this.#counts, 0, (written + 1) | 0);
    return true;
  }

  /** Reads one into target, x, y, z. @returns {boolean} false if there is none */
  read() {
    const read = this.#counts[1];
    if (read === Atomics.load(this.#counts, 0)) return false;
    const at = (read & (capacity - 1)) * messageWords;
    this.target = this.#numbers[at];
    this.x = this.#numbers[at + 1];
    this.y = this.#numbers[at + 2];
    this.z = this.#numbers[at + 3];
    Atomics.store(this.#counts, 1, (read + 1) | 0);
    return true;
  }
}

const fields = ["gaps", "late", "load", "latency", "badSamples"];

/** What the worklet tells of itself, and the greatest samples of sources and outputs since somebody looked. */
export class Report {
  #cleared; // how often the reader has taken the peaks
  #seen = 0; // how often the writer has noticed
  values;

  static memory(numPeaks, shared) {
    const size = 4 + 4 * (fields.length + numPeaks);
    return shared ? new SharedArrayBuffer(size) : new ArrayBuffer(size);
  }

  constructor(memory) {
    this.#cleared = new Int32Array(memory, 0, 1);
    this.values = new Float32Array(memory, 4);
  }

  get peaks() {
    return this.values.subarray(fields.length);
  }

  clearPeaks() {
    Atomics.add(this.#cleared, 0, 1);
  }

  takePeaks(peaks) {
    const cleared = Atomics.load(this.#cleared, 0);
    const anew = cleared !== this.#seen;
    this.#seen = cleared;
    for (let i = 0; i < peaks.length; ++i) {
      const at = fields.length + i;
      if (anew || peaks[i] > this.values[at]) this.values[at] = peaks[i];
    }
  }
}
fields.forEach((field, i) =>
  Object.defineProperty(Report.prototype, field, {
    get() {
      return this.values[i];
    },
    set(value) {
      this.values[i] = value;
    },
  }),
);
