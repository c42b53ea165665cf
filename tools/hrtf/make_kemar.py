#!/usr/bin/python3
"""Makes the built-in sets for 44.1 kHz from the MIT KEMAR measurements, and prints how good all built-in sets are.

    tools/hrtf/make_kemar.py                 fits both sets anew (minutes) and writes them to src/hrtf/data
    tools/hrtf/make_kemar.py --check         evaluates the sets that are there, those for other rates too
    tools/hrtf/make_kemar.py --only binaural|transaural
    tools/hrtf/make_kemar.py --rate 48000    evaluates that set alone

Exits with 1 if a figure misses its limit. The measurements (Gardner and Martin, MIT Media Lab, 1994) come with Debian's
package libmysofa1; the tool needs python3-numpy, python3-scipy and python3-h5py. Its results don't depend on the number of
threads, but the last digits may differ between versions of the linear algebra library: the committed files count.
"""

import argparse
import pathlib
import sys

import numpy as np

import binaural
import evaluate
import measurements
import transaural

DATA = pathlib.Path(__file__).resolve().parents[2] / "src" / "hrtf" / "data"
SETS = {
    "binaural": ("hrtf_2b_KEMAR_44100.coll", binaural.make, evaluate.figures, evaluate.report),
    "transaural": ("hrtf_2bt_KEMAR_44100.coll", transaural.make, transaural.figures, transaural.report),
}


# The other binaural sets are made by the program, see docs/program.md.
RATES = [44100, 48000, 88200, 96000, 176400, 192000]


def read(path):
    """The rows of a .coll file."""
    lines = path.read_text(encoding="ascii").splitlines()
    return np.array([[float(value) for value in line.split(",")[1].strip(" ;").split()] for line in lines])


def write(path, rows):
    """One line a row: its number from 1, a comma, the values, a semicolon."""
    lines = [f"{number}, " + " ".join(f"{value:.6f}" for value in row) + ";" for number, row in enumerate(rows, 1)]
    path.write_text("\n".join(lines) + "\n", encoding="ascii")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--measurements", default="/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa")
    parser.add_argument("--check", action="store_true", help="evaluate the committed sets, make nothing")
    parser.add_argument("--only", choices=SETS)
    parser.add_argument("--rate", type=int, choices=RATES, help="evaluate the binaural set for this rate alone")
    options = parser.parse_args()

    left, good = measurements.load_left_ear(options.measurements), True
    if options.rate or (options.check and options.only != "transaural"):
        for rate in [options.rate] if options.rate else RATES[1:]:
            print(f"binaural: {DATA / f'hrtf_2b_KEMAR_{rate}.coll'}", flush=True)
            good = evaluate.report(evaluate.figures(read(DATA / f"hrtf_2b_KEMAR_{rate}.coll"), left, rate), rate) and good
    if options.rate:
        return 0 if good else 1
    for name, (file, make, figures, report) in SETS.items():
        if options.only not in (None, name):
            continue
        print(f"{name}: {DATA / file}", flush=True)
        if options.check:
            result = figures(read(DATA / file), left)
        else:
            rows, result = make(options.measurements, lambda line: print(line, flush=True))
            write(DATA / file, rows)
        good = report(result) and good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
