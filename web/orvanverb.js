// Rooms for the sounds of a page.
//
//     import { OrvanRoom } from "./orvanverb.js";
//
//     const context = new AudioContext();
//     const room = await OrvanRoom.create(context, { sources: 2 });
//     voice.connect(room, 0, 0);                      // an AudioNode, to source 0
//     room.connect(context.destination);              // headphones
//     room.place(0, { azimuth: -45, distance: 2 });   // degrees, positive to the right; metres
//     room.set("tr0", 2.5);
//
// orvanverb.d.ts tells the types of everything.

import { messageWords, Report, Ring } from "./orvanverb-memory.js";

const here = (file) => new URL(file, import.meta.url);

/** What a message is for; the module has the same list. */
const target = { control: 0, source: 1, speaker: 2, orientation: 3, mute: 4, bypass: 5, clear: 6 };
const usual = { sources: 1, speakers: 2, internals: 8, vector: 64 };
const greatestCount = { sources: 64, speakers: 64, internals: 16 };
const emptyState = "orvanverb-state 1\n";
const retryAfter = 20; // [ms], when the ring was full

let compiled; // the module, once for the page
const modulesAdded = new WeakMap(); // of each context

async function compileModule() {
  const response = await fetch(here("orvanverb.wasm"));
  if (!response.ok) throw new Error(`${response.url}: ${response.status} ${response.statusText}`);
  return WebAssembly.compile(await response.arrayBuffer()); // servers may call it what they like
}

/** The engine in the page, which never sounds: it knows the controls, checks what comes and tells how things are. */
class Twin {
  constructor(module, text, { sources, speakers, internals }) {
    const imports = {};
    for (const { module: name, name: what } of WebAssembly.Module.imports(module)) (imports[name] ??= {})[what] = () => 0;
    this.engine = new WebAssembly.Instance(module, imports).exports;
    this.engine._initialize?.();
    this.giveText(text);
    this.must(this.engine.make(sources, speakers, internals));
  }

  giveText(text) {
    const bytes = new TextEncoder().encode(text + "\0");
    const pointer = this.engine.text(bytes.length);
    new Uint8Array(this.engine.memory.buffer, pointer, bytes.length).set(bytes);
  }

  text(pointer) {
    const bytes = new Uint8Array(this.engine.memory.buffer, pointer);
    return new TextDecoder().decode(bytes.subarray(0, bytes.indexOf(0)));
  }

  must(succeeded) {
    if (!succeeded) throw new RangeError(this.text(this.engine.error()));
  }

  controls() {
    const texts = ["name", "label", "usual_name", "unit", "what", "group", "scale", "change"];
    return Array.from({ length: this.engine.numControls() }, (_, i) => ({
      ...Object.fromEntries(texts.map((text, field) => [text, this.text(this.engine.controlText(i, field))])),
      min: this.engine.controlValue(i, 0),
      max: this.engine.controlValue(i, 1),
      default: this.engine.controlValue(i, 2),
    }));
  }

  point(read) {
    return { x: read(0), y: read(1), z: read(2) };
  }
}

function toDegrees({ x, y, z }) {
  const degrees = 180 / Math.PI;
  return {
    azimuth: Math.atan2(x, y) * degrees,
    elevation: Math.atan2(z, Math.hypot(x, y)) * degrees,
    distance: Math.hypot(x, y, z),
  };
}

function requireCount(name, value) {
  const least = name === "speakers" || name === "internals" ? 2 : 1;
  if (!(Number.isInteger(value) && value >= least && value <= greatestCount[name]))
    throw new RangeError(`${name}: ${value} is not a whole number from ${least} to ${greatestCount[name]}`);
  return value;
}

const Base = globalThis.AudioWorkletNode ?? class {};

/** A room with sources and loudspeakers, or headphones, in it: an AudioNode with an input for each source and one output
 * with a channel for each loudspeaker. */
export class OrvanRoom extends Base {
  #twin;
  #controls;
  #indices;
  #vector;
  #places;
  #ring;
  #report;
  #pending = new Map(); // messages by their target that the ring can't take yet
  #retry = 0;
  #statesOnTheWay = 0;
  #waiting = new Map(); // for answers of the worklet
  #nextSync = 0;

  /** Makes a room. See orvanverb.d.ts for the options. */
  static async create(context, options = {}) {
    if (!context.audioWorklet)
      throw new Error("this page has no audio worklets: it has to come by https, or from this machine");
    compiled ??= compileModule();
    compiled.catch(() => (compiled = undefined)); // so that another attempt can succeed
    if (!modulesAdded.has(context))
      modulesAdded.set(context, context.audioWorklet.addModule(here("orvanverb-processor.js")));
    const [module] = await Promise.all([compiled, modulesAdded.get(context)]);

    const { state = emptyState, speakers = usual.speakers, format } = options;
    const places = Array.isArray(speakers) ? speakers : null;
    const counts = {
      sources: requireCount("sources", options.sources ?? usual.sources),
      speakers: requireCount("speakers", places ? places.length : speakers === "headphones" ? 2 : speakers),
      internals: requireCount("internals", options.internals ?? usual.internals),
    };
    const twin = new Twin(module, format ? `${state.trimEnd()}\nformat ${format}\n` : state, counts);
    places?.forEach((place, i) => {
      const [azimuth, elevation = 0, distance = 1] = [place].flat();
      const point = twin.point((axis) => twin.engine.coordinate(azimuth, elevation, distance, axis));
      twin.must(twin.engine.apply((target.speaker << 16) | i, point.x, point.y, point.z));
    });
    twin.giveText(state);
    twin.must(twin.engine.parse());
    const vector = options.vector ?? (twin.engine.parsedVector() || usual.vector);
    if (![16, 32, 64, 128].includes(vector))
      throw new RangeError(`vector: ${vector} is none of 16, 32, 64 and 128, which fill a block of a page`);

    const shared = globalThis.crossOriginIsolated === true;
    const ring = shared ? Ring.memory() : null;
    const report = shared ? Report.memory(twin.engine.numSources() + twin.engine.numSpeakers(), true) : null;
    return new OrvanRoom(context, module, twin, vector, ring, report);
  }

  /** @private use create() */
  constructor(context, module, twin, vector, ring, report) {
    const numSources = twin.engine.numSources();
    const numSpeakers = twin.engine.numSpeakers();
    const state = new TextEncoder().encode(twin.text(twin.engine.state(vector)));
    super(context, "orvanverb", {
      numberOfInputs: numSources,
      numberOfOutputs: 1,
      outputChannelCount: [numSpeakers],
      channelCount: 1, // of each source: what has more channels is mixed down
      channelCountMode: "explicit",
      processorOptions: { module, state, vector, ring, report },
    });
    this.#twin = twin;
    this.#vector = vector;
    this.#controls = twin.controls();
    this.#indices = new Map(this.#controls.map(({ name }, i) => [name, i]));
    this.#ring = ring && new Ring(ring);
    this.#report = report && new Report(report);
    this.#readPlaces();
    this.port.onmessage = ({ data }) => {
      if (data.report) this.#answer("report", data.report);
      else this.#answer(data.sync, undefined);
    };
    context.addEventListener("statechange", () => {
      if (context.state === "running") this.port.postMessage({ restart: true });
    });
  }

  // What there is

  get sources() {
    return this.#twin.engine.numSources();
  }

  get speakers() {
    return this.#twin.engine.numSpeakers();
  }

  get internals() {
    return this.#twin.engine.numInternals();
  }

  get headphones() {
    return Boolean(this.#twin.engine.hasEars());
  }

  get vector() {
    return this.#vector;
  }

  get controls() {
    return this.#controls;
  }

  // Controls and places

  set(name, value) {
    const index = this.#index(name);
    const { min, max, unit } = this.#controls[index];
    if (!(value >= min && value <= max))
      throw new RangeError(`${name}: ${value} is not from ${min} to ${max}${unit && ` ${unit}`}`);
    this.#send((target.control << 16) | index, Number(value), 0, 0);
  }

  get(name) {
    return this.#twin.engine.get(this.#index(name));
  }

  place(source, place) {
    this.#require("source", source, this.sources);
    const cartesian = "x" in place || "y" in place || "z" in place;
    const point = cartesian
      ? { ...this.position(source), ...place }
      : this.#point({ ...this.#places[source], ...place });
    if (![point.x, point.y, point.z].every(Number.isFinite)) throw new RangeError("a place that is not finite");
    this.#send((target.source << 16) | source, point.x, point.y, point.z);
    this.#places[source] = cartesian ? toDegrees(point) : { ...this.#places[source], ...place };
  }

  placeOf(source) {
    this.#require("source", source, this.sources);
    return { ...this.#places[source] };
  }

  position(source) {
    this.#require("source", source, this.sources);
    return this.#twin.point((axis) => this.#twin.engine.source(source, axis));
  }

  placeSpeaker(speaker, place) {
    this.#require("speaker", speaker, this.speakers);
    const point = "x" in place ? place : this.#point({ ...this.placeOfSpeaker(speaker), ...place });
    this.#send((target.speaker << 16) | speaker, point.x, point.y, point.z);
  }

  placeOfSpeaker(speaker) {
    this.#require("speaker", speaker, this.speakers);
    return toDegrees(this.#twin.point((axis) => this.#twin.engine.speaker(speaker, axis)));
  }

  turn(orientation) {
    const { yaw, pitch, roll } = { ...this.orientation, ...orientation };
    this.#send(target.orientation << 16, yaw, pitch, roll);
  }

  get orientation() {
    const { x, y, z } = this.#twin.point((axis) => this.#twin.engine.orientation(axis));
    return { yaw: x, pitch: y, roll: z };
  }

  get mute() {
    return Boolean(this.#twin.engine.muted());
  }

  set mute(mute) {
    this.#send(target.mute << 16, mute ? 1 : 0, 0, 0);
  }

  get bypass() {
    return Boolean(this.#twin.engine.bypassed());
  }

  set bypass(bypass) {
    this.#send(target.bypass << 16, bypass ? 1 : 0, 0, 0);
  }

  clear() {
    this.#send(target.clear << 16, 0, 0, 0);
  }

  // States

  get state() {
    return this.#twin.text(this.#twin.engine.state(this.#vector));
  }

  set state(text) {
    this.#twin.giveText(text);
    this.#twin.must(this.#twin.engine.restore());
    this.#readPlaces();
    // It goes by the port, past the ring: what is sent behind it waits until it has come.
    this.#pending.clear();
    this.#statesOnTheWay += 1;
    this.port.postMessage({ state: new TextEncoder().encode(this.state) });
    this.sync().then(() => {
      this.#statesOnTheWay -= 1;
      this.#flush();
    });
  }

  furnish(text) {
    const { engine } = this.#twin;
    this.#twin.giveText(text);
    this.#twin.must(engine.parse());
    const values = this.#controls.map((_, i) => engine.parsedControl(i));
    values.forEach((value, i) => {
      if (value !== engine.get(i)) this.#send((target.control << 16) | i, value, 0, 0);
    });
  }

  // What it tells

  async report() {
    const values = this.#report ? this.#report.values.slice() : await this.#ask("report", { report: true });
    this.#report?.clearPeaks();
    const [gaps, late, load, latency, badSamples, ...peaks] = values;
    return {
      gaps,
      late,
      load,
      latency,
      badSamples,
      peaks: { sources: peaks.slice(0, this.sources), outputs: peaks.slice(this.sources) },
    };
  }

  sync() {
    return this.#ask((this.#nextSync += 1), { sync: this.#nextSync });
  }

  close() {
    this.port.postMessage({ close: true });
    this.disconnect();
    clearTimeout(this.#retry);
  }

  // How it talks

  #index(name) {
    const index = this.#indices.get(name);
    if (index === undefined) throw new RangeError(`${name}: is no control of a room`);
    return index;
  }

  #require(what, index, number) {
    if (!(Number.isInteger(index) && index >= 0 && index < number))
      throw new RangeError(`${what} ${index}: there are ${number}, from 0`);
  }

  #point({ azimuth, elevation, distance }) {
    if (!(distance >= 0)) throw new RangeError(`distance: ${distance} is not 0 or more`);
    return this.#twin.point((axis) => this.#twin.engine.coordinate(azimuth, elevation, distance, axis));
  }

  #readPlaces() {
    this.#places = Array.from({ length: this.sources }, (_, i) =>
      toDegrees(this.#twin.point((axis) => this.#twin.engine.source(i, axis))),
    );
  }

  /** To the twin and to the worklet. */
  #send(to, x, y, z) {
    this.#twin.engine.apply(to, x, y, z);
    // Of several for one target that have to wait, the last one counts.
    this.#pending.delete(to);
    this.#pending.set(to, [x, y, z]);
    if (this.#ring) this.#flush();
    else if (this.#pending.size === 1) queueMicrotask(() => this.#post());
  }

  /** All that was said in one go as one message: each is garbage for the thread that sounds. */
  #post() {
    if (this.#ring || this.#pending.size === 0) return;
    this.port.postMessage(Float32Array.from([...this.#pending].flatMap(([to, numbers]) => [to, ...numbers])));
    this.#pending.clear();
  }

  #flush() {
    if (!this.#ring) return;
    if (this.#statesOnTheWay > 0) return;
    for (const [to, numbers] of this.#pending) {
      if (!this.#ring.write(to, ...numbers)) break;
      this.#pending.delete(to);
    }
    clearTimeout(this.#retry);
    this.#retry = this.#pending.size > 0 ? setTimeout(() => this.#flush(), retryAfter) : 0;
  }

  #ask(question, message) {
    this.#post();
    return new Promise((resolve) => {
      const others = this.#waiting.get(question);
      this.#waiting.set(question, others ? [...others, resolve] : [resolve]);
      if (!others) this.port.postMessage(message);
    });
  }

  #answer(question, value) {
    const waiting = this.#waiting.get(question) ?? [];
    this.#waiting.delete(question);
    for (const resolve of waiting) resolve(value);
  }
}
