#!/usr/bin/env python3
"""How long the bands of a room sound, measured, against what it was asked for.

    PYTHONPATH=build/release/python examples/python/decay_per_band.py decay.png

Draws three rooms: one that is the same at all frequencies, one as most halls are, with a warm bass and soft highs, and
a bright one. Needs python3-matplotlib.
"""

import sys

import matplotlib

matplotlib.use("Agg")
from matplotlib import pyplot

import orvanverb

RATE = 48000
rooms = [("even", dict(decay_s=1.5, decay_low=1, decay_medium=1, decay_high=1)),
         ("a hall", dict(decay_s=2, decay_low=1.25, decay_medium=1, decay_high=0.5)),
         ("bright", dict(decay_s=1.2, decay_low=0.5, decay_medium=0.8, decay_high=1))]

figure, axes = pyplot.subplots(1, len(rooms), figsize=(11, 3.2), sharey=True, layout="constrained")
for axis, (title, asked) in zip(axes, rooms):
    room = orvanverb.Room(speakers=8, rate=RATE)
    room.air = 0  # which would shorten the highs beside what is asked for
    for name, value in asked.items():
        setattr(room, name, value)
    measured = orvanverb.measure(room.impulse_responses()[0], RATE, bands="third")
    bands = {float(name): figures["t30_s"] for name, figures in measured["bands"].items() if figures["t30_s"]}
    edges = [50, room.crossover_low_hz, room.crossover_high_hz, 20000]
    times = [room.decay_s * factor for factor in (room.decay_low, room.decay_medium, room.decay_high)]
    axis.stairs(times, edges, baseline=None, color="#b0b0b0", linewidth=3, label="asked for")
    axis.plot(list(bands), list(bands.values()), "o-", color="#1f6f78", markersize=3, label="measured: T30")
    axis.set(title=title, xscale="log", xlabel="frequency [Hz]", ylim=(0, 3))
    axis.grid(alpha=0.3)
axes[0].set_ylabel("decay [s]")
axes[0].legend()
figure.savefig(sys.argv[1], dpi=110)
