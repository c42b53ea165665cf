"""The measured head: loading, grid, diffuse-field equalisation, and the frequency axes on which everything is judged."""

import h5py
import numpy as np

RATE = 44100.0

# Rings of the full-sphere grid: elevation in degrees and number of azimuths. Row j of a ring is the left ear with the
# source j steps to the left (counter-clockwise) of ahead.
RING_ELEVATIONS = list(range(-40, 91, 10))
RING_AZIMUTHS = [56, 60, 72, 72, 72, 72, 72, 60, 56, 45, 36, 24, 12, 1]
RING_OFFSETS = np.concatenate(([0], np.cumsum(RING_AZIMUTHS)[:-1]))
NUM_ROWS = sum(RING_AZIMUTHS)


def load_left_ear(path):
    """Impulse responses of the left ear, rows x samples, in the order of the grid.

    Raises ValueError if the file's directions are not the grid's rows one to one.
    """
    with h5py.File(path, "r") as sofa:
        responses = np.array(sofa["Data.IR"], dtype=float)
        positions = np.array(sofa["SourcePosition"], dtype=float)
        rate = float(np.ravel(sofa["Data.SamplingRate"])[0])
    expected = np.column_stack([azimuths(), elevations()])
    if rate != RATE or len(positions) != NUM_ROWS or np.abs(positions[:, :2] - expected).max() > 0.51:
        raise ValueError(f"{path}: not the 710 directions of the full-sphere grid at 44100 Hz")
    return responses[:, 0, :]


def azimuths():
    """Azimuth of each row in degrees, counter-clockwise from ahead."""
    return np.concatenate([360.0 * np.arange(count) / count for count in RING_AZIMUTHS])


def elevations():
    """Elevation of each row in degrees."""
    return np.repeat(np.array(RING_ELEVATIONS, dtype=float), RING_AZIMUTHS)


def mirror_rows():
    """For each row the row of the mirrored azimuth: the other ear of the same direction."""
    return np.concatenate(
        [offset + (count - np.arange(count)) % count for offset, count in zip(RING_OFFSETS, RING_AZIMUTHS)]
    )


def solid_angles():
    """Weight of each row: the band of its ring from 5 degrees below to 5 above, shared by the ring's rows."""
    upper = np.radians(np.minimum(np.array(RING_ELEVATIONS) + 5.0, 90.0))
    lower = np.radians(np.array(RING_ELEVATIONS) - 5.0)
    band = (np.sin(upper) - np.sin(lower)) / np.array(RING_AZIMUTHS)
    weights = np.repeat(band, RING_AZIMUTHS)
    return weights / weights.sum()


def spectra(responses, frequencies):
    """Complex spectra of impulse responses (rows x samples) at frequencies in Hz."""
    samples = np.arange(responses.shape[1])
    return responses @ np.exp(-2j * np.pi * np.outer(samples, frequencies) / RATE)


def diffuse_power(responses, frequencies):
    """Power of the diffuse field at the ear: mean of |H|^2 over the sphere, weighted by solid angle."""
    return solid_angles() @ np.abs(spectra(responses, frequencies)) ** 2


def erb_number(frequency):
    """ERB-rate scale (Glasberg and Moore, "Derivation of auditory filter shapes from notched-noise data", 1990)."""
    return 21.4 * np.log10(1.0 + 0.00437 * np.asarray(frequency))


def erb_frequency(number):
    """Inverse of erb_number: Hz."""
    return (10.0 ** (np.asarray(number) / 21.4) - 1.0) / 0.00437


class Axis:
    """A fine frequency axis and the matrix that smooths power on it over one ERB at 73 centres half an ERB apart from
    100 Hz to 16 kHz.

    Points are at most 0.1 ERB and largest_spacing (in Hz) apart: a pole near the unit circle is no wider at the top than that, and
    must not hide between two points.
    """

    def __init__(self, largest_spacing=60.0, low=30.0, high=0.5 * RATE):
        points = [low]
        while points[-1] < high:
            points.append(min(points[-1] + largest_spacing, float(erb_frequency(erb_number(points[-1]) + 0.1))))
        self.frequencies = np.array(points[:-1] + [high])
        numbers = erb_number(self.frequencies)
        self.widths = np.gradient(numbers)  # of each point, in ERBs
        self.centres = np.linspace(erb_number(100.0), erb_number(16000.0), 73)
        # A rectangle of one ERB with linear edges half an ERB wide in all, so that no point enters at once.
        distance = np.abs(numbers[None, :] - self.centres[:, None])
        smoothing = np.clip((0.75 - distance) / 0.5, 0.0, 1.0)
        # Weighted by width in Hz, so that each band is a mean over frequency.
        smoothing *= np.gradient(self.frequencies)[None, :]
        self.smoothing = smoothing / smoothing.sum(axis=1, keepdims=True)


def decibels(power):
    return 10.0 * np.log10(np.maximum(power, 1e-12))
