// What a user may write, and below it what he may not. test_types.py lets the compiler judge; nothing here runs.
import { Control, OrvanRoom, Place, Report } from "../orvanverb.js";

export async function right(context: AudioContext, voice: AudioNode): Promise<string> {
  const room = await OrvanRoom.create(context, { sources: 2, speakers: [-30, [30, 10], [110, 0, 2]], internals: 12, vector: 128 });
  await OrvanRoom.create(new OfflineAudioContext(2, 48000, 48000), { speakers: "headphones", state: room.state });
  voice.connect(room, 0, 1).connect(context.destination);
  room.place(0, { azimuth: -45 });
  room.place(1, { x: 1, y: 2, z: 0 });
  room.placeSpeaker(0, { azimuth: -35, distance: 2 });
  room.set("tr0", room.get("tr0") + 0.5);
  room.turn({ yaw: 30 });
  room.mute = !room.bypass;
  const place: Place = room.placeOf(0);
  const report: Report = await room.report();
  const loud: number[] = [...report.peaks.outputs].filter((peak) => peak > 1);
  const knobs: Control[] = room.controls.filter(({ group, min, max }) => group === "early" && min < max);
  await room.sync();
  room.close();
  return `${place.distance} ${loud.length} ${knobs[0].usual_name} ${room.headphones}`;
}

export async function wrong(context: AudioContext): Promise<void> {
  // @ts-expect-error a room is made by create()
  new OrvanRoom(context);
  // @ts-expect-error neither a number, nor places, nor headphones
  const room = await OrvanRoom.create(context, { speakers: "stereo" });
  // @ts-expect-error angles are numbers
  room.place(0, { azimuth: "left" });
  // @ts-expect-error no such angle
  room.turn({ heading: 3 });
  // @ts-expect-error controls have names
  room.set(3, 1);
  // @ts-expect-error a promise first
  room.report().gaps;
  // @ts-expect-error the counts of a room are for good
  room.sources = 3;
}
