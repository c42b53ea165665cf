// The engine in this page, as a connection to it: see README.md of the page for what goes over it.
import { OrvanRoom } from "./orvanverb.js";
import { readLink } from "./link.js";

const levelsEvery = 50; // [ms]
const statusEvery = 10; // levels
const silence = -120; // [dB]
const ratesWithEars = [44100, 48000];
const firstPlaces = [
  { azimuth: -40, elevation: 0, distance: 1.5 },
  { azimuth: 35, elevation: 0, distance: 2.5 },
  { azimuth: 130, elevation: 20, distance: 3 },
];

const decibels = (peak) => (peak > 1e-6 ? 20 * Math.log10(peak) : silence);

/** Holds the audio context, the room in it and a gain for each source; players connect to `inputs`. */
export class WorkletConnection {
  onopen = () => {};
  onmessage = () => {};
  onclose = () => {};
  /** Called when the room is ready, and with each change of it. */
  onready = () => {};
  onchange = () => {};

  context;
  /** A gain node for each source: what plays into it is heard there. */
  inputs = [];
  names;
  table = [];
  #engine;
  #numSources;
  #sources = [];
  #presets = [];
  #timer = 0;

  constructor({ sources }) {
    this.#numSources = sources;
  }

  async open() {
    try {
      await this.#start();
    } catch (error) {
      this.onclose(error.message);
    }
  }

  async #start() {
    this.context = new AudioContext({ latencyHint: "interactive" });
    // A device of another rate: the browser converts, which serves better than ears that are shifted in frequency.
    if (!ratesWithEars.includes(this.context.sampleRate)) {
      await this.context.close();
      this.context = new AudioContext({ latencyHint: "interactive", sampleRate: 48000 });
    }
    this.context.suspend(); // silent until somebody wants to hear it, also where pages may sound of themselves
    const [engine, presets] = await Promise.all([
      OrvanRoom.create(this.context, { sources: this.#numSources }),
      fetch("presets.json").then((response) => response.json()),
    ]);
    this.#engine = engine;
    this.#presets = presets;
    this.table = engine.controls;
    engine.connect(this.context.destination);
    for (let i = 0; i < this.#numSources; ++i) {
      this.inputs.push(new GainNode(this.context));
      this.inputs[i].connect(engine, 0, i);
      this.#sources.push({ index: i, gain: 0, mute: false, name: "" });
      if (firstPlaces[i]) engine.place(i, firstPlaces[i]);
    }
    this.#take(readLink(location.hash, this.table));
    this.context.addEventListener("statechange", () => this.onmessage({ status: this.#status() }));
    this.onopen();
    this.onmessage({ snapshot: this.#snapshot() });
    this.onready();
    let count = 0;
    this.#timer = setInterval(async () => {
      if (this.context.state !== "running") return;
      const report = await engine.report();
      const levels = { sources: [...report.peaks.sources].map(decibels), outputs: [...report.peaks.outputs].map(decibels) };
      this.onmessage({ levels, ...(count++ % statusEvery === 0 && { status: this.#status(report) }) });
    }, levelsEvery);
  }

  close() {
    clearInterval(this.#timer);
    this.#engine?.close();
    this.context?.close();
  }

  send(message) {
    if (!this.#engine) return false;
    try {
      this.#take(message);
    } catch (error) {
      this.onmessage({ error: error.message });
    }
    this.onchange();
    return true;
  }

  /** How the room is, in the form of a snapshot. */
  room() {
    const engine = this.#engine;
    return {
      controls: Object.fromEntries(this.table.map(({ name }) => [name, engine.get(name)])),
      sources: this.#sources.map((source) => ({ ...source, ...engine.placeOf(source.index) })),
      listener: engine.orientation,
      mute: engine.mute,
      bypass: engine.bypass,
    };
  }

  nameSource(index, name) {
    this.#sources[index].name = name;
    this.onmessage({ sources: [{ index, name }] });
  }

  #snapshot() {
    return {
      ...this.room(),
      table: this.table,
      speakers: [{ name: "left" }, { name: "right" }],
      headphones: true,
      presets: this.#presets.map(({ name, title }) => ({ name, title })),
      saves: true,
      status: this.#status(),
    };
  }

  #status(report) {
    const audio = this.context.state === "running" ? "playing" : "paused";
    const always = { audio, rate: this.context.sampleRate, block: this.#engine.vector };
    return report ? { ...always, load: report.load, xruns: report.gaps, bad: report.badSamples } : always;
  }

  #take(message) {
    const engine = this.#engine;
    for (const [name, value] of Object.entries(message.controls ?? {})) engine.set(name, value);
    for (const { index, gain, mute, name, ...place } of message.sources ?? []) {
      const source = this.#sources[index];
      if (!source) continue;
      if (gain !== undefined) source.gain = gain;
      if (mute !== undefined) source.mute = mute;
      if (name !== undefined) source.name = name;
      if (Object.keys(place).length > 0) engine.place(index, place);
      const amplitude = source.mute || source.gain <= silence ? 0 : 10 ** (source.gain / 20);
      this.inputs[index].gain.setTargetAtTime(amplitude, this.context.currentTime, 0.01);
    }
    if (message.listener) engine.turn(message.listener);
    if ("mute" in message) engine.mute = message.mute;
    if ("bypass" in message) engine.bypass = message.bypass;
    if (message.clear) engine.clear();
    if (message.preset) {
      engine.furnish(this.#presets.find(({ name }) => name === message.preset).text);
      this.onmessage({ controls: this.room().controls });
    }
    if (message.state) {
      engine.state = message.state;
      this.onmessage({ snapshot: this.#snapshot() });
    }
    if (message.save) this.onmessage({ state: engine.state });
    for (const key of ["mute", "bypass"]) if (key in message) this.onmessage({ [key]: engine[key] });
  }
}
