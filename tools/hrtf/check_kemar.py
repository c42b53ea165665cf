#!/usr/bin/python3
"""Prints how good the built-in sets are, by the MIT KEMAR measurements and by code that shares nothing with the program's.

    tools/hrtf/check_kemar.py                 all sets, in minutes
    tools/hrtf/check_kemar.py --only binaural|transaural
    tools/hrtf/check_kemar.py --rate 48000    the binaural set for that rate alone

Exits with 1 if a figure misses its limit. The measurements (Gardner and Martin, MIT Media Lab, 1994) come with Debian's
package libmysofa1; the tool needs python3-numpy, python3-scipy and python3-h5py.
"""

import argparse
import pathlib
import sys

import numpy as np

import evaluate
import measurements
import transaural

DATA = pathlib.Path(__file__).resolve().parents[2] / "src" / "hrtf" / "data"
RATES = [44100, 48000, 88200, 96000, 176400, 192000]


def read(path):
    """The rows of a .coll file."""
    lines = path.read_text(encoding="ascii").splitlines()
    return np.array([[float(value) for value in line.split(",")[1].strip(" ;").split()] for line in lines])


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--measurements", default="/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa")
    parser.add_argument("--only", choices=["binaural", "transaural"])
    parser.add_argument("--rate", type=int, choices=RATES)
    options = parser.parse_args()

    left, good = measurements.load_left_ear(options.measurements), True
    for rate in [options.rate] if options.rate else RATES if options.only != "transaural" else []:
        path = DATA / f"hrtf_2b_KEMAR_{rate}.coll"
        print(f"binaural: {path}", flush=True)
        good = evaluate.report(evaluate.figures(read(path), left, rate), rate) and good
    if not options.rate and options.only != "binaural":
        path = DATA / "hrtf_2bt_KEMAR_44100.coll"
        print(f"transaural: {path}", flush=True)
        good = transaural.report(transaural.figures(read(path), left)) and good
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
