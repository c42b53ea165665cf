"""Cascades of second-order sections with b0 = a0 = 1 and one gain, held stable and minimum-phase by construction.

A quadratic 1 + c1 z^-1 + c2 z^-2 has its zeros within radius R when (c1 / R, c2 / R^2) lies in the triangle
|c2'| < 1, |c1'| < 1 + c2'. The unbounded parameters (u, v) reach just that: c2' = tanh u, c1' = (1 + tanh u) tanh v.
A cascade's parameters are [log gain in dB, 6 numerators (u, v), 6 denominators (u, v)].
"""

import numpy as np
from scipy.optimize import linear_sum_assignment
from itertools import permutations

RADIUS = 0.993
STAGES = 6
NUM_PARAMETERS = 1 + 4 * STAGES


def quadratics(uv, radius=RADIUS):
    """(..., 2) unbounded parameters to (..., 2) coefficients c1, c2."""
    t2, t1 = np.tanh(uv[..., 0]), np.tanh(uv[..., 1])
    return np.stack([radius * (1.0 + t2) * t1, radius**2 * t2], axis=-1)


def unbounded(coefficients, radius=RADIUS, margin=1e-3):
    """Inverse of quadratics; what lies outside is brought in by a margin."""
    t2 = np.clip(coefficients[..., 1] / radius**2, -1.0 + margin, 1.0 - margin)
    t1 = np.clip(coefficients[..., 0] / radius / (1.0 + t2), -1.0 + margin, 1.0 - margin)
    return np.stack([np.arctanh(t2), np.arctanh(t1)], axis=-1)


def quadratic_powers(uv, frequencies, rate):
    """|1 + c1 z^-1 + c2 z^-2|^2 for parameters (rows, stages, 2): points x rows x stages, and what derivatives need."""
    w = 2.0 * np.pi * frequencies[:, None, None] / rate
    cos1, cos2 = np.cos(w), np.cos(2.0 * w)
    c1, c2 = np.moveaxis(quadratics(uv), -1, 0)
    return (1.0 + c1**2 + c2**2) + (2.0 * c1 * (1.0 + c2)) * cos1 + (2.0 * c2) * cos2, cos1, cos2, c1, c2


def split(parameters):
    """Gain in dB (...), numerators and denominators (..., 6, 2), both as unbounded parameters."""
    pairs = parameters[..., 1:].reshape(*parameters.shape[:-1], 2 * STAGES, 2)
    return parameters[..., 0], pairs[..., :STAGES, :], pairs[..., STAGES:, :]


def cascade_decibels(parameters, frequencies, rate):
    """Decibels of a batch of cascades (rows x parameters), rows x points."""
    gain, numerators, denominators = split(parameters)
    upper = quadratic_powers(numerators, frequencies, rate)[0].prod(axis=-1)
    lower = quadratic_powers(denominators, frequencies, rate)[0].prod(axis=-1)
    return gain[:, None] + 10.0 * np.log10(upper / lower).T


def cascade_jacobian(parameters, frequencies, rate):
    """Decibels (rows x points) and their derivatives (points x rows x parameters)."""
    pairs = parameters[:, 1:].reshape(len(parameters), 2 * STAGES, 2)
    power, cos1, cos2, c1, c2 = quadratic_powers(pairs, frequencies, rate)
    sign = np.repeat([1.0, -1.0], STAGES)
    level = parameters[:, 0] + (10.0 * np.log10(power) * sign).sum(axis=-1)
    scale = sign * (10.0 / np.log(10.0)) / power
    by_c1 = (2.0 * c1 + (2.0 * (1.0 + c2)) * cos1) * scale
    by_c2 = (2.0 * c2 + (2.0 * c1) * cos1 + 2.0 * cos2) * scale
    t2, t1 = np.tanh(pairs[..., 0]), np.tanh(pairs[..., 1])
    jacobian = np.empty((len(frequencies), len(parameters), NUM_PARAMETERS))
    jacobian[:, :, 0] = 1.0
    jacobian[:, :, 1::2] = by_c1 * (RADIUS * t1 * (1.0 - t2**2)) + by_c2 * (RADIUS**2 * (1.0 - t2**2))
    jacobian[:, :, 2::2] = by_c1 * (RADIUS * (1.0 + t2) * (1.0 - t1**2))
    return level.T, jacobian


def coefficient_row(parameters):
    """One cascade as 25 coefficients: gain, then b1, b2, a1, a2 per stage."""
    gain, numerators, denominators = split(parameters)
    stages = np.concatenate([quadratics(numerators), quadratics(denominators)], axis=-1)
    return np.concatenate([[10.0 ** (gain / 20.0)], stages.ravel()])


def response(row, frequencies, rate):
    """Complex response of 25 coefficients at frequencies in Hz."""
    return np.prod(stage_responses(row, frequencies, rate), axis=0)


def stage_responses(row, frequencies, rate):
    """Responses of the gain and of each stage, (1 + stages) x points."""
    z1 = np.exp(-2j * np.pi * frequencies / rate)
    result = [np.full(len(frequencies), row[0], dtype=complex)]
    for b1, b2, a1, a2 in row[1:].reshape(-1, 4):
        result.append((1.0 + b1 * z1 + b2 * z1**2) / (1.0 + a1 * z1 + a2 * z1**2))
    return np.array(result)


def inner_peak(stages):
    """Largest peak of a signal between stages over the output's peak, in dB. stages: as stage_responses gives them."""
    partial = np.abs(np.cumprod(stages, axis=0))
    return 20.0 * np.log10(partial.max() / partial[-1].max())


def order_for_least_inner_peak(row, frequencies, rate, num_fixed=0):
    """Pairs each pole pair with its nearest zeros and orders the stages for the least inner peak.

    The first num_fixed stages stay as they are.
    """
    stages = row[1:].reshape(-1, 4)
    free = stages[num_fixed:]
    z1 = np.exp(-2j * np.pi * frequencies / rate)
    numerators = [1.0 + b1 * z1 + b2 * z1**2 for b1, b2 in free[:, :2]]
    denominators = [1.0 + a1 * z1 + a2 * z1**2 for a1, a2 in free[:, 2:]]
    # Zeros near poles make a flat stage: the spread of a stage's decibels is its cost.
    cost = np.array([[np.ptp(20.0 * np.log10(np.abs(n / d))) for d in denominators] for n in numerators])
    upper, lower = linear_sum_assignment(cost)
    paired = np.column_stack([free[upper, :2], free[lower, 2:]])

    partial = np.cumprod(stage_responses(row, frequencies, rate)[: 1 + num_fixed], axis=0)
    start, peak_so_far = np.abs(partial[-1]), np.abs(partial).max()
    levels = [np.abs(numerators[i] / denominators[k]) for i, k in zip(upper, lower)]
    best, best_order = np.inf, None
    for order in permutations(range(len(paired))):
        signal, peak = start, peak_so_far
        for index in order:
            signal = signal * levels[index]
            peak = max(peak, signal.max())
            if peak >= best:
                break
        if peak < best:
            best, best_order = peak, order
    result = row.copy()
    result[1 + 4 * num_fixed :] = paired[list(best_order)].ravel()
    return result
