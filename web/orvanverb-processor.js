// The room in an audio worklet. orvanverb.js makes it and talks to it; nobody else needs to.
//
// Everything that a page sends stands in a ring in memory that both share, where the page may have such, and comes
// through the port otherwise. In process() nothing is allocated; what allocates (a whole state, the answer to a page
// without shared memory) happens in the port's handler, between two blocks.

import { messageWords, Ring, Report } from "./orvanverb-memory.js";

/** Counts the moments in which the sound's clock fell behind that of the wall: each was heard as a gap. The least lag of
 * a second tells, since blocks come in bursts. */
class GapCounter {
  static #window = 1; // [s]
  static #tolerance = 0.008; // [s], coarse clocks of browsers included
  gaps = 0;
  #least = Infinity;
  #before = Infinity;
  #end = 0;

  /** Begins anew, as after a pause that was meant. */
  restart() {
    this.#least = this.#before = Infinity;
  }

  /** @param wall, sound  times of a block [s] */
  count(wall, sound) {
    const lag = wall - sound;
    if (lag < this.#least) this.#least = lag;
    if (sound < this.#end) return;
    if (this.#least > this.#before + GapCounter.#tolerance) this.gaps += 1;
    // What lies above a gap is the new measure.
    this.#before = this.#least;
    this.#least = Infinity;
    this.#end = sound + GapCounter.#window;
  }
}

class OrvanProcessor extends AudioWorkletProcessor {
  #engine;
  #ring;
  #report;
  #vector;
  #inputs = [];
  #outputs = [];
  #peaks = null;
  #begun = false;
  #closed = false;
  #clock = globalThis.performance ? () => performance.now() : () => Date.now(); // [ms]
  #gaps = new GapCounter();
  #busy = 0; // [ms] of the blocks since #busySince
  #busySince = 0;

  constructor({ processorOptions: { module, state, vector, ring, report } }) {
    super();
    this.#vector = vector;
    this.#ring = ring && new Ring(ring);
    const refresh = () => this.#begun && this.#findArrays();
    const imports = {};
    for (const { module: name, name: what } of WebAssembly.Module.imports(module))
      (imports[name] ??= {})[what] = what === "emscripten_notify_memory_growth" ? refresh : () => 0;
    this.#engine = new WebAssembly.Instance(module, imports).exports;
    this.#engine._initialize?.();
    this.#takeText(state);
    if (!this.#engine.make(0, 0, 0)) throw new Error("the room of the page is none for the worklet");
    this.#report = new Report(report ?? Report.memory(this.#engine.numSources() + this.#engine.numSpeakers(), false));
    this.port.onmessage = ({ data }) => this.#receive(data);
  }

  #takeText(bytes) {
    const text = this.#engine.text(bytes.length + 1);
    const memory = new Uint8Array(this.#engine.memory.buffer, text, bytes.length + 1);
    memory.set(bytes);
    memory[bytes.length] = 0;
  }

  #readRing() {
    const ring = this.#ring;
    if (ring) while (ring.read()) this.#engine.apply(ring.target, ring.x, ring.y, ring.z);
  }

  #receive(message) {
    if (message instanceof Float32Array) {
      for (let i = 0; i < message.length; i += messageWords)
        this.#engine.apply(message[i], message[i + 1], message[i + 2], message[i + 3]);
    } else if (message.state) {
      this.#readRing();
      this.#takeText(message.state);
      this.#engine.restore();
    } else if (message.restart) {
      this.#gaps.restart();
    } else if (message.report) {
      this.port.postMessage({ report: this.#report.values });
      this.#report.clearPeaks();
    } else if (message.sync !== undefined) {
      this.port.postMessage({ sync: message.sync });
    } else if (message.close) {
      this.#closed = true;
    }
  }

  /** With the first block and not before: a room that was told everything by then sounds, from its first sample on, as
   * any other room that was told the same. */
  #begin(numSamples) {
    this.#report.latency = this.#engine.begin(sampleRate, numSamples, this.#vector);
    this.#findArrays();
    this.#begun = true;
  }

  /** Finds the samples in the module's memory, which has moved if it has grown. */
  #findArrays() {
    const array = (pointer, length) => new Float32Array(this.#engine.memory.buffer, pointer, length);
    const numSamples = 128;
    const numSources = this.#engine.numSources();
    const numSpeakers = this.#engine.numSpeakers();
    this.#inputs = Array.from({ length: numSources }, (_, i) => array(this.#engine.input(i), numSamples));
    this.#outputs = Array.from({ length: numSpeakers }, (_, i) => array(this.#engine.output(i), numSamples));
    this.#peaks = array(this.#engine.levels(), numSources + numSpeakers);
  }

  process(inputs, [outputs]) {
    if (this.#closed) return false;
    this.#readRing();
    if (!this.#begun) this.#begin(outputs[0].length);
    const start = this.#clock();
    for (let i = 0; i < this.#inputs.length; ++i) {
      const samples = inputs[i][0];
      if (samples) this.#inputs[i].set(samples);
      else this.#inputs[i].fill(0);
    }
    this.#engine.process(outputs[0].length);
    for (let i = 0; i < outputs.length; ++i) outputs[i].set(this.#outputs[i]);
    this.#tell(start, this.#clock(), outputs[0].length / sampleRate);
    return true;
  }

  #tell(start, end, seconds) {
    this.#report.takePeaks(this.#peaks);
    this.#peaks.fill(0);
    this.#gaps.count(start / 1000, currentTime);
    this.#report.gaps = this.#gaps.gaps;
    if (end - start > 1000 * seconds) this.#report.late += 1;
    this.#busy += end - start;
    if (currentTime - this.#busySince < 0.5) return;
    this.#report.load = this.#busy / 1000 / (currentTime - this.#busySince);
    this.#report.badSamples = this.#engine.badSamples();
    this.#busy = 0;
    this.#busySince = currentTime;
  }
}

registerProcessor("orvanverb", OrvanProcessor);
