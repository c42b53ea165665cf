#!/usr/bin/python3
"""What a listener with headphones gets, against the head that was measured: writes docs/headphones.md's table to standard
output and its picture to docs/pictures/headphones.png.

    tools/hrtf/headphones.py build/release/apps/orvanverb/orvanverb

For each sample rate and direction `orvanverb render` plays a click through the direct sound alone (the layers of the room are
turned down), and the left ear's response is compared with the measured one, diffuse-field equalised, in bands of one ERB from
100 Hz to 16 kHz.
"""

import pathlib
import subprocess
import sys
import tempfile

import numpy as np
from scipy.io import wavfile

import measurements
from measurements import Axis, decibels

MEASURED = "/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa"
PICTURE = pathlib.Path(__file__).resolve().parents[2] / "docs" / "pictures" / "headphones.png"
RATES = [44100, 48000, 96000]
# Name, row of the grid, azimuth to the right and elevation for --source.
DIRECTIONS = [("straight ahead", 260, 0, 0), ("at the ear (left)", 278, -90, 0), ("at the other ear (right)", 314, 90, 0),
              ("above", 709, 0, 90)]
DIRECT_DB = 20.0 * np.log10(0.25)  # what the engine gives a source at 1 m besides its filters
QUIET = ["early_gain=-60", "cluster_gain=-60", "room_gain=-60"]


def rendered(program, rate, azimuth, elevation, sets):
    """Impulse response of the left ear."""
    with tempfile.TemporaryDirectory() as folder:
        click, out = f"{folder}/click.wav", f"{folder}/ears.wav"
        samples = np.zeros(rate // 5, dtype=np.float32)
        samples[rate // 100] = 1.0
        wavfile.write(click, rate, samples)
        words = [program, "render", click, "-o", out, "--format", "float", "--tail", "0", *sets]
        words += ["--source", "1", str(azimuth), str(elevation), "1"]
        for setting in QUIET:
            words += ["--set", setting]
        subprocess.run(words, check=True, stderr=subprocess.DEVNULL, stdout=subprocess.DEVNULL)
        return wavfile.read(out)[1][:, 0].astype(float)


def level(response, rate, axis):
    """Decibels in bands."""
    samples = np.arange(len(response))
    spectrum = response @ np.exp(-2j * np.pi * np.outer(samples, axis.frequencies) / rate)
    return decibels((np.abs(spectrum) ** 2) @ axis.smoothing.T)


def main():
    program, axis = sys.argv[1], Axis(high=20000.0)
    left = measurements.load_left_ear(MEASURED)
    target = np.abs(measurements.spectra(left, axis.frequencies)) ** 2
    target /= measurements.diffuse_power(left, axis.frequencies)
    target = decibels(target @ axis.smoothing.T)
    hertz = measurements.erb_frequency(axis.centres)

    with tempfile.TemporaryDirectory() as folder:
        # The set for 44.1 kHz, to show what another rate would make of it: by its name it is a file like any other.
        before = f"{folder}/before.hrtf"
        subprocess.run([program, "hrtf", "convert", "kemar", before], check=True, stderr=subprocess.DEVNULL)
        curves, rows = {}, []
        for name, row, azimuth, elevation in DIRECTIONS:
            # One gain for all curves: that of the direct sound of a source at 1 m.
            line = [name]
            for rate in RATES:
                own = level(rendered(program, rate, azimuth, elevation, []), rate, axis) - target[row] - DIRECT_DB
                old = level(rendered(program, rate, azimuth, elevation, ["--hrtf", before]), rate, axis)
                old = old - target[row] - DIRECT_DB
                curves[name, rate] = own + target[row]
                line.append((np.sqrt(np.mean(own**2)), np.abs(own).max(), np.sqrt(np.mean(old**2)), np.abs(old).max()))
            rows.append((line, target[row]))

    print("| Source | " + " | ".join(f"{rate / 1000:g} kHz" for rate in RATES) + " |")
    print("|---" * (1 + len(RATES)) + "|")
    for line, _ in rows:
        cells = [f"{rms:.2f}, {worst:.1f} dB ({old:.2f}, {old_worst:.1f})" for rms, worst, old, old_worst in line[1:]]
        print(f"| {line[0]} | " + " | ".join(cells) + " |")

    script = [
        "set terminal pngcairo size 1000,760 font ',11'", f"set output '{PICTURE}'", "set multiplot layout 2,2",
        "set logscale x", "set xrange [100:16000]", "set xtics (100,200,500,'1k' 1000,'2k' 2000,'5k' 5000,'10k' 10000)",
        "set yrange [-25:15]", "set grid", "set ylabel 'dB'", "set xlabel 'Hz'", "set key bottom left",
    ]
    data = []
    for line, measured in rows:
        script.append(f"set title '{line[0]}'")
        plots = ["'-' with lines lw 5 lc rgb '#c0c0c0' title 'measured head'"]
        plots += [f"'-' with lines lw 1.5 title 'rendered at {rate / 1000:g} kHz'" for rate in RATES]
        script.append("plot " + ", ".join(plots))
        for curve in [measured] + [curves[line[0], rate] for rate in RATES]:
            script += [f"{x:.2f} {y:.3f}" for x, y in zip(hertz, curve)] + ["e"]
    subprocess.run(["gnuplot"], input="\n".join(script + ["unset multiplot", ""]), text=True, check=True)


if __name__ == "__main__":
    sys.exit(main())
