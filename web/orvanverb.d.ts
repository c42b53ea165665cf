/** Rooms for the sounds of a page: the engine as an AudioNode. */

/** Angles in degrees: azimuth 0 is ahead and 90 on the right, elevation 90 above. Metres. */
export interface Place {
  azimuth: number;
  elevation: number;
  distance: number;
}

/** Metres: x to the right, y ahead, z up. */
export interface Position {
  x: number;
  y: number;
  z: number;
}

/** Where the listener looks, in degrees: yaw positive to the right, pitch up, roll to the right ear. */
export interface Orientation {
  yaw: number;
  pitch: number;
  roll: number;
}

export interface Control {
  readonly name: string;
  readonly label: string;
  /** What the field usually calls it. */
  readonly usual_name: string;
  /** "dB", "Hz", "ms", "s", "degrees"; empty for factors and places in a range. */
  readonly unit: string;
  /** What it does, in one phrase. */
  readonly what: string;
  readonly group: "late" | "direct" | "room" | "early" | "cluster";
  readonly scale: "linear" | "logarithmic" | "on/off";
  /** How a change sounds. */
  readonly change: "ramps" | "glides" | "jumps";
  readonly min: number;
  readonly max: number;
  readonly default: number;
}

export interface Report {
  /** How often the sound stopped because it wasn't ready in time, and blocks that took longer than they last. */
  gaps: number;
  late: number;
  /** Part of the time that the room takes, 0 to 1 [of the last half second]. */
  load: number;
  /** Samples by which outputs come late: 0 where blocks are as long as they usually are. */
  latency: number;
  /** Samples that weren't finite, or too large for sound, and were kept out. */
  badSamples: number;
  /** The greatest samples since the last report; 1 is full scale. */
  peaks: { sources: Float32Array | number[]; outputs: Float32Array | number[] };
}

export interface RoomOptions {
  /** How many sources there are, 1 to 64: inputs of the node. [1] */
  sources?: number;
  /** "headphones", a number of loudspeakers in a ring (3 to 64), or their places: azimuths, or [azimuth, elevation,
   * distance]. ["headphones"] */
  speakers?: "headphones" | number | ReadonlyArray<number | readonly [number, number?, number?]>;
  /** Channels of the room, 2 to 16: more are denser and cost more. [8] */
  internals?: number;
  /** A form of the outputs, such as "ambix", by the program's names. [by their number] */
  format?: string;
  /** Samples of one run of the engine: 16, 32, 64 or 128. Rooms with the same state sound the same to the last bit only
   * at the same size. [that of the state, or 64, as the program] */
  vector?: number;
  /** A saved state, whose counts precede those given here. */
  state?: string;
}

/** A room: an input for each source, which is mixed down to one channel, and one output with a channel for each
 * loudspeaker, or the left and the right ear.
 *
 * What is out of range is a RangeError that says the range, and nothing has changed. What is set before the context runs
 * is there from the first sample on; later the room moves to it as it does on stage. */
export declare class OrvanRoom extends AudioWorkletNode {
  /** @throws {RangeError} for a count out of range, or a state that can't be read */
  static create(context: BaseAudioContext, options?: RoomOptions): Promise<OrvanRoom>;

  private constructor();

  readonly sources: number;
  /** Channels of the output. */
  readonly speakers: number;
  readonly internals: number;
  /** Whether they are two ears. */
  readonly headphones: boolean;
  readonly vector: number;
  /** The table of all controls. */
  readonly controls: readonly Control[];

  set(control: string, value: number): void;
  get(control: string): number;
  /** Moves a source; what is left out stays. Sources count from 0. */
  place(source: number, place: Partial<Place> | Partial<Position>): void;
  placeOf(source: number): Place;
  position(source: number): Position;
  placeSpeaker(speaker: number, place: Partial<Place> | Position): void;
  placeOfSpeaker(speaker: number): Place;
  /** Turns the listener's head; what is left out stays. */
  turn(orientation: Partial<Orientation>): void;
  readonly orientation: Orientation;
  mute: boolean;
  bypass: boolean;
  /** Empties the room: nothing that ever came in is heard again. */
  clear(): void;

  /** All that the room was told, as the program's state files have it. Setting it needs a room of the same counts. */
  state: string;
  /** Sets all controls as a state, or a file of the program's rooms, has them, and leaves everything in its place. */
  furnish(text: string): void;

  report(): Promise<Report>;
  /** Resolves when the worklet has heard all that was said before. */
  sync(): Promise<void>;
  /** Ends the room. */
  close(): void;
}
