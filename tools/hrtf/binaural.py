"""Makes the built-in binaural table: 710 rows of a delay in milliseconds and 25 coefficients."""

import numpy as np

import evaluate
import measurements
import sections
from fit import Refiner, warped_start
from measurements import RATE, Axis, decibels

# The table's first values are fixed: other sets are aligned to them. Parameters that they determine are held.
FIRST_DELAYS = [1.0, 0.978714]
FIRST_COEFFICIENTS = {
    0: [0.695123, -0.212201, 0.929357, -0.434221, 0.289656, -1.156659, 0.912914],
    1: [0.791516, -0.190295],
}
LARGEST_PEAK_OUTSIDE_DB = 1.0


def hold_first_values(parameters, row):
    """Writes the fixed coefficients of a row into its parameters. Returns which parameters they hold.

    A held quadratic keeps both parameters; of row 1 the first numerator's second coefficient is free in principle and
    held at what the start gave it, since u and v share it.
    """
    held = np.zeros(sections.NUM_PARAMETERS, dtype=bool)
    values = FIRST_COEFFICIENTS[row]
    parameters[0], held[0] = 20.0 * np.log10(values[0]), True
    for number in range(0, len(values) - 1, 2):
        stage, is_denominator = number // 4, number % 4 == 2
        place = 1 + 2 * (stage + (sections.STAGES if is_denominator else 0))
        c1, c2 = (values[1 + number : 3 + number] + [None])[:2]
        if c2 is None:
            c2 = sections.quadratics(parameters[place : place + 2])[1]
        parameters[place : place + 2] = sections.unbounded(np.array([c1, c2]), margin=1e-9)
        held[place : place + 2] = True
    return held


def fit_rows(level, axis, log=print):
    """Parameters of all rows: own starts first, then starts from neighbouring directions, the best of each kept."""
    window = np.ones(11) / 11.0
    starts = np.array([
        warped_start(decibels(np.convolve(10.0 ** (row / 10.0), window, "same")), axis.frequencies) for row in level
    ])
    held = {row: hold_first_values(starts[row], row) for row in FIRST_COEFFICIENTS}
    refiner, rows = Refiner(axis, level, held), np.arange(len(level))
    best, cost = refiner.refine(starts, rows, 60)

    azimuth, elevation = np.radians(measurements.azimuths()), np.radians(measurements.elevations())
    points = np.column_stack([
        np.cos(elevation) * np.cos(azimuth), np.cos(elevation) * np.sin(azimuth), np.sin(elevation)
    ])
    neighbours = np.argsort(-(points @ points.T), axis=1, kind="stable")[:, 1:9]
    for sweep in range(3):
        # In later sweeps only the rows that fit worst: they have the most to gain from another start.
        chosen = rows if sweep == 0 else np.argsort(-cost, kind="stable")[:240]
        for number in range(neighbours.shape[1]):
            starts = best[neighbours[chosen, number]]
            for position, row in enumerate(chosen):
                if row in held:
                    hold_first_values(starts[position], row)
            trial, trial_cost = refiner.refine(starts, chosen, 10)
            promising = trial_cost < 1.4 * cost[chosen]
            trial, trial_cost = refiner.refine(trial[promising], chosen[promising], 25)
            improved = trial_cost < cost[chosen[promising]]
            places = chosen[promising][improved]
            best[places], cost[places] = trial[improved], trial_cost[improved]
        log(f"  refined from neighbours: mean {np.sqrt(cost).mean():.4f}, worst {np.sqrt(cost).max():.4f} dB")
    return refiner.refine(best, rows, 60)[0]


def delays(left, coefficients):
    """Delay of each row in milliseconds: what its minimum-phase cascade lacks against the measured response.

    Found below 1.5 kHz by cross-correlation, and shifted in common so that row 0 has its fixed value.
    """
    size = 1 << 13
    frequencies = np.fft.rfftfreq(size, 1.0 / RATE)
    inside = (frequencies >= 300.0) & (frequencies <= 1500.0)
    measured = np.fft.rfft(left, size)[:, inside]
    made = np.array([sections.response(row, frequencies[inside], RATE) for row in coefficients])
    lags = np.arange(0.0, 3.0e-3, 1.0e-6)
    shifts = np.exp(2j * np.pi * np.outer(lags, frequencies[inside]))
    found = lags[np.argmax(np.real(shifts @ (measured * np.conj(made)).T), axis=0)] * 1000.0
    result = found - found[0] + FIRST_DELAYS[0]
    result[1] = FIRST_DELAYS[1]
    return result


def make(path, log=print):
    """The table (710 x 26) and its figures, from a file with the measurements."""
    left, axis = measurements.load_left_ear(path), Axis()
    level = decibels(
        np.abs(measurements.spectra(left, axis.frequencies)) ** 2
        / measurements.diffuse_power(left, axis.frequencies)
    )
    # Outside the audible range the measurements hold noise: no row is asked to peak there.
    audible = (axis.frequencies >= 100.0) & (axis.frequencies <= 16000.0)
    ceiling = level[:, audible].max(axis=1, keepdims=True) + LARGEST_PEAK_OUTSIDE_DB
    level = np.where(audible, level, np.minimum(level, ceiling))
    parameters = fit_rows(level, axis, log)
    coefficients = []
    for number, row in enumerate(parameters):
        fixed = {0: 2, 1: 1}.get(number, 0)
        coefficients.append(
            sections.order_for_least_inner_peak(sections.coefficient_row(row), axis.frequencies, RATE, fixed)
        )
    coefficients = np.array(coefficients)
    for row, values in FIRST_COEFFICIENTS.items():
        coefficients[row, : len(values)] = values  # exact digits
    table = np.round(np.column_stack([delays(left, coefficients), coefficients]), 6)
    return table, evaluate.figures(table, left)
