#!/usr/bin/env python3
"""Halves the rate of a recording of one channel with 16 bits, which halves what a page has to fetch of a voice.

    web/make_voice.py voice.wav small.wav
"""

import array
import math
import sys
import wave

HALF = 24  # taps on each side

with wave.open(sys.argv[1]) as file:
    assert file.getnchannels() == 1 and file.getsampwidth() == 2
    rate = file.getframerate()
    samples = array.array("h", bytes(2 * HALF) + file.readframes(file.getnframes()) + bytes(2 * HALF))

# A windowed sinc with its half power a little below the new half rate.
taps = [(0.45 if k == 0 else math.sin(0.45 * math.pi * k) / (math.pi * k)) * (0.5 + 0.5 * math.cos(math.pi * k / HALF))
        for k in range(-HALF + 1, HALF)]
halved = array.array("h", (round(sum(t * x for t, x in zip(taps, samples[i + 1:i + 2 * HALF])))
                           for i in range(0, len(samples) - 2 * HALF, 2)))
with wave.open(sys.argv[2], "w") as file:
    file.setnchannels(1)
    file.setsampwidth(2)
    file.setframerate(rate // 2)
    file.writeframes(halved.tobytes())
