// What sounds: a recording, two instruments that are computed here, a file, the microphone.

const seconds = 8; // of the computed loops

/** A sequence of numbers that looks random and is the same everywhere. */
function* noise(seed) {
  for (let state = seed; ; ) {
    state = (Math.imul(state, 1664525) + 1013904223) | 0;
    yield state / 2 ** 31;
  }
}

/** A plucked string: K. Karplus, A. Strong, "Digital Synthesis of Plucked-String and Drum Timbres", Computer Music
 * Journal 7(2), 1983. */
function pluck(samples, begin, rate, frequency) {
  const period = Math.round(rate / frequency);
  const line = Float32Array.from({ length: period }, ((random) => () => random.next().value)(noise(period)));
  for (let i = begin, at = 0; i < samples.length && i < begin + 3 * rate; ++i, at = (at + 1) % period) {
    samples[i] += 0.25 * line[at];
    line[at] = 0.498 * (line[at] + line[(at + 1) % period]);
  }
}

/** A knock on wood: two modes that fade in some hundredths of a second. */
function knock(samples, begin, rate, frequency) {
  for (let i = 0; i < 0.15 * rate && begin + i < samples.length; ++i) {
    const t = i / rate;
    const modes = Math.sin(2 * Math.PI * frequency * t) + 0.4 * Math.sin(2 * Math.PI * 2.7 * frequency * t);
    samples[begin + i] += 0.35 * Math.exp(-60 * t) * modes;
  }
}

function compute(context, events, play) {
  const buffer = new AudioBuffer({ length: seconds * context.sampleRate, sampleRate: context.sampleRate });
  for (const [time, frequency] of events)
    play(buffer.getChannelData(0), Math.round(time * context.sampleRate), context.sampleRate, frequency);
  return buffer;
}

const melody = [196, 246.94, 293.66, 392, 293.66, 246.94, 220, 261.63, 329.63, 440, 329.63, 261.63];

/** What can be chosen for a source. */
export const sounds = {
  voice: async (context) => {
    const response = await fetch("voice.mp3");
    const voice = await context.decodeAudioData(await response.arrayBuffer());
    // A moment of silence behind it, in which the room is heard.
    const loop = new AudioBuffer({ length: voice.length + context.sampleRate, sampleRate: voice.sampleRate });
    loop.copyToChannel(voice.getChannelData(0), 0);
    return loop;
  },
  strings: async (context) => compute(context, melody.map((frequency, i) => [0.5 * i, frequency]), pluck),
  wood: async (context) => compute(context, [0, 1, 1.5, 3, 4, 5.5, 6].map((time, i) => [time, i % 3 ? 620 : 830]), knock),
};

/** Plays one thing at a time into a node: what was asked for last, however long each takes to load. */
export class Player {
  #context;
  #into;
  #turn = 0;
  #stop = () => {};

  constructor(context, into) {
    this.#context = context;
    this.#into = into;
  }

  /**
   * @param sound  a name of `sounds`, a file, "microphone" or "nothing"
   * @returns whether it plays: not if something else has been asked for meanwhile
   * @throws if the browser can't read the file, or there is no microphone, or the user doesn't want it
   */
  async play(sound) {
    const turn = ++this.#turn;
    const loaded = await this.#load(sound).catch((error) => {
      if (turn === this.#turn) throw error;
    });
    if (turn !== this.#turn) {
      loaded?.end();
      return false;
    }
    this.#stop();
    loaded.node?.connect(this.#into);
    this.#stop = () => {
      loaded.node?.disconnect();
      loaded.end();
    };
    return true;
  }

  /** A node that sounds, and what ends it. */
  async #load(sound) {
    if (sound === "nothing") return { end: () => {} };
    if (sound === "microphone") {
      const mediaStream = await navigator.mediaDevices.getUserMedia({
        audio: { echoCancellation: false, noiseSuppression: false, autoGainControl: false },
      });
      const node = new MediaStreamAudioSourceNode(this.#context, { mediaStream });
      return { node, end: () => mediaStream.getTracks().forEach((track) => track.stop()) };
    }
    const buffer = await (sound instanceof File ? this.#decode(sound) : sounds[sound](this.#context));
    const node = new AudioBufferSourceNode(this.#context, { buffer, loop: true });
    node.start();
    return { node, end: () => node.stop() };
  }

  async #decode(file) {
    const data = await file.arrayBuffer();
    return this.#context.decodeAudioData(data).catch(() => {
      throw new Error(`${file.name}: the browser can't read this as sound`);
    });
  }
}
