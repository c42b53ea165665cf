#!/usr/bin/env python3
"""Labelled responses per second, by the package on one worker and on two, and by two other ways at hand.

    PYTHONPATH=build/release/python ORVANVERB=build/release/apps/orvanverb/orvanverb bench/responses.py [ROOMS]

All make impulse responses of a second for two ears at 48 kHz, of the same random rooms, and measure them:

- batch, N workers   orvanverb.batch.run: a file with response and labels for each room
- programs           `orvanverb ir` and `orvanverb measure --json`, two processes a room, as a shell script would
- noise              what data sets are often made of instead of rooms: white noise in octave bands that decay as the
                     room's do, by NumPy, the same for both ears but for its seed, measured by `orvanverb.measure`.
                     No directions, no early reflections: the price of the plainest response, not its equal

Seconds of the wall depend on what else the machine does; those of the processor are of all processes together.
"""

import os
import pathlib
import subprocess
import sys
import tempfile
import time

import numpy

import orvanverb
from orvanverb import batch

RATE = 48000
program = os.environ.get("ORVANVERB", "orvanverb")
number = int(sys.argv[1]) if len(sys.argv) > 1 else 200
rooms = [{**room, "seconds": 1} for room in batch.random_rooms(number, 1)]


def by_programs(folder: pathlib.Path) -> None:
    own = ("id", "azimuth", "elevation", "distance", "seconds")
    for room in rooms:
        file = folder / f"{room['id']}.wav"
        words = [word for name, value in room.items() if name not in own for word in ("--set", f"{name}={value}")]
        place = [str(room[name]) for name in ("azimuth", "elevation", "distance")]
        subprocess.run([program, "ir", "-o", file, "--tail", "1", *words, "--source", "1", *place], check=True,
                       stderr=subprocess.DEVNULL)
        with (folder / f"{room['id']}.json").open("wb") as labels:
            subprocess.run([program, "measure", "--json", file], check=True, stdout=labels, stderr=subprocess.DEVNULL)


def by_noise(folder: pathlib.Path) -> None:
    times = numpy.arange(RATE) / RATE
    frequencies = numpy.fft.rfftfreq(RATE, 1 / RATE)
    centres = 125 * 2.0 ** numpy.arange(8)
    bands = [(frequencies >= c / numpy.sqrt(2)) & (frequencies < c * numpy.sqrt(2)) for c in centres]
    for i, room in enumerate(rooms):
        generator = numpy.random.default_rng(i)
        high = numpy.interp(numpy.log2(centres), [numpy.log2(1000), numpy.log2(8000)], [1, room["trh"]])
        response = numpy.zeros((2, RATE))
        for band, factor in zip(bands, high):
            spectrum = numpy.fft.rfft(generator.standard_normal((2, RATE))) * band
            response += numpy.fft.irfft(spectrum, RATE) * 10 ** (-3 * times / (factor * room["tr0"]))
        labels = orvanverb.measure(response, RATE)
        numpy.savez(folder / f"{room['id']}.npz", response=response.astype(numpy.float32), t30=labels["t30_mid_s"])


ways = {
    "batch, 1 worker": lambda folder: batch.run(rooms, folder, workers=1),
    "batch, 2 workers": lambda folder: batch.run(rooms, folder, workers=2),
    "programs": by_programs,
    "noise": by_noise,
}
print(f"{number} rooms, {os.cpu_count()} processors, load {os.getloadavg()[0]:.1f}")
print(f"{'way':18} {'wall [s]':>9} {'a second':>9} {'processor [s]':>14} {'a second of it':>15}")
for name, make in ways.items():
    with tempfile.TemporaryDirectory() as folder:
        wall, before = time.perf_counter(), os.times()
        make(pathlib.Path(folder))
        wall, after = time.perf_counter() - wall, os.times()
        busy = sum(after[:4]) - sum(before[:4])
        print(f"{name:18} {wall:9.1f} {number / wall:9.1f} {busy:14.1f} {number / busy:15.1f}")
