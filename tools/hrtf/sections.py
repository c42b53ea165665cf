"""Cascades of second-order sections with b0 = a0 = 1 and one gain: 25 coefficients, the gain, then b1, b2, a1, a2 per stage."""

import numpy as np


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
