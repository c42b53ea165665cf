"""Judges the built-in transaural set: for 17 half angles of a loudspeaker pair the two filters of a shuffler network.

With Hi and Hc the responses from a loudspeaker to its near and its far ear, the exact filters on the sum and on the
difference of the two binaural channels are 1 / (2 sqrt2 (Hi + Hc)) and 1 / (2 sqrt2 (Hi - Hc)), up to a common delay
(Cooper and Bauck, "Prospects for transaural recording", J. Audio Eng. Soc. 37, 1989).
"""

import numpy as np

import measurements
import sections
from measurements import RATE

HALF_ANGLES = 10 * np.arange(1, 18)
NETWORK_GAIN = 2.0 * np.sqrt(2.0)


def ear_responses(left, frequencies):
    """Hi and Hc for each half angle, diffuse-field equalised, angles x points.

    The equaliser is applied as magnitude: a phase common to both ears changes neither crosstalk nor colour.
    """
    offset = measurements.RING_OFFSETS[measurements.RING_ELEVATIONS.index(0)]
    near = measurements.spectra(left[offset + HALF_ANGLES // 5], frequencies)
    far = measurements.spectra(left[offset + 72 - HALF_ANGLES // 5], frequencies)
    diffuse = np.sqrt(measurements.diffuse_power(left, frequencies))
    return near / diffuse, far / diffuse


def figures(rows, left):
    """Figures at the ears of the measured head. rows: 34 x 26, as in the .coll text."""
    result = {}
    for name, frequencies in {
        "": np.arange(200.0, 8000.1, 10.0),
        ", ERB axis": measurements.erb_frequency(
            np.linspace(measurements.erb_number(200.0), measurements.erb_number(8000.0), 400)
        ),
    }.items():
        near, far = ear_responses(left, frequencies)
        reduction, colour, level = [], [], []
        low = frequencies <= 4000.0
        for number in range(len(HALF_ANGLES)):
            total = NETWORK_GAIN * sections.response(rows[2 * number][1:], frequencies, RATE)
            difference = NETWORK_GAIN * sections.response(rows[2 * number + 1][1:], frequencies, RATE)
            first = (near[number] + far[number]) * total
            second = (near[number] - far[number]) * difference
            bare = 20.0 * np.log10(np.abs(far[number] / near[number]))
            reduction.append(bare - 20.0 * np.log10(np.abs((first - second) / (first + second))))
            near_ear = 20.0 * np.log10(np.abs(0.5 * (first + second)))
            level.append(near_ear.mean())
            colour.append(np.std(near_ear))
        reduction = np.array(reduction)
        result[f"crosstalk reduction mean{name}"] = reduction.mean()
        result[f"crosstalk reduction, worst angle{name}"] = reduction.mean(axis=1).min()
        result[f"crosstalk reduction to 4 kHz{name}"] = reduction[:, low].mean()
        result[f"near-ear colour, worst angle{name}"] = max(colour)
        result[f"near-ear level, worst angle{name}"] = np.abs(level).max()
    frequencies = np.linspace(0.0, RATE / 2.0, 4096)
    result["largest filter gain"] = max(
        20.0 * np.log10(np.abs(sections.response(row[1:], frequencies, RATE)).max()) for row in rows
    )
    result["largest radius"] = np.abs(
        [np.roots([1.0, c1, c2]) for row in rows for c1, c2 in row[2:].reshape(-1, 2)]
    ).max()
    return result


# figure: (limit, whether it is a least value)
LIMITS = {
    "crosstalk reduction mean": (15.0, True),
    "crosstalk reduction, worst angle": (11.0, True),
    "crosstalk reduction to 4 kHz": (17.5, True),
    "near-ear colour, worst angle": (1.0, False),
    "near-ear level, worst angle": (0.5, False),
    "largest filter gain": (18.0, False),
    "largest radius": (0.995, False),
}


def report(result):
    """Prints the figures beside their limits. True if all hold."""
    good = True
    for name, value in result.items():
        limit, is_least = LIMITS.get(name.removesuffix(", ERB axis"))
        holds = value >= limit if is_least else value <= limit
        good = good and holds
        print(f"{name:50s} {value:9.4f}  limit {limit:g}{'' if holds else '   MISSED'}")
    return good
