#!/usr/bin/env python3
"""A thousand labelled responses of random rooms, and how their labels are spread.

    PYTHONPATH=build/release/python examples/python/labelled_responses.py responses [1000]

Writes responses/*.npz, responses/labels.csv and, if matplotlib is there, responses/labels.png. A run that was stopped
goes on where it was.
"""

import csv
import pathlib
import sys

from orvanverb import batch

folder = pathlib.Path(sys.argv[1])
number = int(sys.argv[2]) if len(sys.argv) > 2 else 1000

batch.run(batch.random_rooms(number), folder, progress=True)

rows = []
for path in sorted(folder.glob("*.npz")):
    labels = batch.labels_of(path)
    measured = labels["measured"]
    rows.append({"id": labels["id"], "t30_s": measured["t30_mid_s"], "c80_db": measured["all"]["c80_db"],
                 "direct_to_rest_db": measured["direct_to_rest_db"], "azimuth_deg": labels["azimuth"]})
with (folder / "labels.csv").open("w", newline="") as file:
    table = csv.DictWriter(file, rows[0])
    table.writeheader()
    table.writerows(rows)

try:
    import matplotlib

    matplotlib.use("Agg")
    from matplotlib import pyplot
except ImportError:
    sys.exit("labels.csv holds the labels; python3-matplotlib draws them")
names = {"t30_s": "T30 [s]", "c80_db": "C80 [dB]", "direct_to_rest_db": "direct to rest [dB]", "azimuth_deg": "azimuth [degrees]"}
figure, axes = pyplot.subplots(1, 4, figsize=(12, 2.8), sharey=True, layout="constrained")
for axis, (name, label) in zip(axes, names.items()):
    axis.hist([row[name] for row in rows if row[name] is not None], bins=30, color="#1f6f78")
    axis.set_xlabel(label)
axes[0].set_ylabel("rooms")
figure.savefig(folder / "labels.png", dpi=110)
