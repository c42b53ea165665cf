"""Fits cascades of six second-order sections to magnitude responses.

Start: Prony's method on a bilinearly warped axis (Oppenheim and Johnson, "Discrete representation of signals", 1972), which
spends the order where the ear resolves. Refinement: Levenberg-Marquardt on the decibels of the ERB-smoothed power, all rows
at once, with a light term on the unsmoothed decibels that keeps peaks from growing where the smoothing doesn't look.
"""

import numpy as np
from scipy.sparse import csr_matrix

import sections
from measurements import RATE, Axis, decibels

WARPING = 0.5
FINE_WEIGHT = 0.12  # of the unsmoothed decibels against the smoothed ones


def warped_start(level, frequencies):
    """Parameters of one cascade from a level in dB on a frequency axis."""
    order, size = 2 * sections.STAGES, 2048
    warped = np.linspace(0.0, np.pi, size + 1)
    # The allpass with -WARPING undoes the one with WARPING.
    unwarped = warped - 2.0 * np.arctan2(WARPING * np.sin(warped), 1.0 + WARPING * np.cos(warped))
    magnitude = np.interp(unwarped * RATE / (2.0 * np.pi), frequencies, level) * np.log(10.0) / 20.0
    cepstrum = np.fft.irfft(magnitude)
    cepstrum[1:size] *= 2.0
    cepstrum[size + 1 :] = 0.0
    impulse = np.fft.irfft(np.exp(np.fft.rfft(cepstrum)))[:400]

    rows = np.arange(order + 1, len(impulse))
    past = np.column_stack([impulse[rows - k] for k in range(1, order + 1)])
    denominator = np.concatenate([[1.0], -np.linalg.lstsq(past, impulse[rows], rcond=None)[0]])
    numerator = np.convolve(denominator, impulse)[: order + 1]
    pairs = [quadratics_of_roots(unwarp(np.roots(c))) for c in (numerator, denominator)]
    parameters = np.concatenate([[0.0], sections.unbounded(np.concatenate(pairs)).ravel()])
    fitted = sections.cascade_decibels(parameters[None], frequencies, RATE)[0]
    parameters[0] = np.mean(level - fitted)
    return parameters


def unwarp(roots):
    """Roots of the warped polynomial on the plain axis, all brought inside the unit circle."""
    roots = (roots + WARPING) / (1.0 + WARPING * roots)
    outside = np.abs(roots) > 1.0
    roots[outside] = 1.0 / np.conj(roots[outside])
    return roots * np.minimum(1.0, 0.98 / np.maximum(np.abs(roots), 1e-9))


def quadratics_of_roots(roots):
    """Groups conjugate pairs, and real roots in order of size, into 6 quadratics c1, c2."""
    tolerance = 1e-8
    upper = [r for r in roots if r.imag > tolerance]
    real = sorted(r.real for r in roots if abs(r.imag) <= tolerance)
    result = [(-2.0 * r.real, abs(r) ** 2) for r in upper]
    result += [(-(a + b), a * b) for a, b in zip(real[::2], real[1::2])]
    result += [(0.0, 0.0)] * (sections.STAGES - len(result))
    return np.array(result)


class Refiner:
    """Levenberg-Marquardt on a batch of rows that share an axis.

    level: rows x points, the wanted unsmoothed decibels on axis.frequencies.
    fixed: for some rows parameters that don't move, as {row: boolean array}.
    """

    def __init__(self, axis: Axis, level, fixed=None):
        self.axis, self.level = axis, level
        self.smoothing = csr_matrix(axis.smoothing)
        self.smoothed = decibels(10.0 ** (level / 10.0) @ axis.smoothing.T)
        self.fixed = fixed or {}
        self.fine_weight = FINE_WEIGHT * (axis.frequencies >= 40.0) * np.sqrt(2.0 * axis.widths)  # centres are half an ERB apart

    def residuals(self, parameters, rows):
        level = sections.cascade_decibels(parameters, self.axis.frequencies, RATE)
        coarse = decibels(10.0 ** (level / 10.0) @ self.axis.smoothing.T) - self.smoothed[rows]
        return np.concatenate([coarse, (level - self.level[rows]) * self.fine_weight], axis=1)

    def normal_equations(self, parameters, residual, rows):
        """J^T J and J^T r of each row."""
        level, jacobian = sections.cascade_jacobian(parameters, self.axis.frequencies, RATE)
        power = 10.0 ** (level / 10.0)
        points, count, size = jacobian.shape
        by_power = (jacobian * power.T[:, :, None]).reshape(points, -1)
        coarse = (self.smoothing @ by_power).reshape(-1, count, size)
        coarse /= (self.smoothing @ power.T)[:, :, None]
        fine = jacobian * self.fine_weight[:, None, None]
        whole = np.concatenate([coarse, fine]).transpose(1, 0, 2)
        for position, row in enumerate(rows):
            if row in self.fixed:
                whole[position][:, self.fixed[row]] = 0.0
        transposed = whole.transpose(0, 2, 1)
        return np.matmul(transposed, whole), np.matmul(transposed, residual[:, :, None])

    def refine(self, parameters, rows, iterations):
        """Refined parameters and their costs (mean square in dB)."""
        parameters, rows = parameters.copy(), np.asarray(rows)
        damping = np.full(len(rows), 1e-2)
        residual = self.residuals(parameters, rows)
        cost = (residual**2).sum(axis=1)
        size = sections.NUM_PARAMETERS
        normal, gradient = np.empty((len(rows), size, size)), np.empty((len(rows), size, 1))
        moved = np.arange(len(rows))
        for _ in range(iterations):
            if len(moved):
                normal[moved], gradient[moved] = self.normal_equations(
                    parameters[moved], residual[moved], rows[moved]
                )
            damped = normal.copy()
            diagonal = np.einsum("ijj->ij", damped)
            diagonal += damping[:, None] * (diagonal + 1e-3) + 1e-9
            trial = parameters + np.clip(-np.linalg.solve(damped, gradient)[:, :, 0], -1.0, 1.0)
            trial[:, 1:] = np.clip(trial[:, 1:], -4.0, 4.0)
            trial_residual = self.residuals(trial, rows)
            trial_cost = (trial_residual**2).sum(axis=1)
            better = trial_cost < cost
            moved = np.flatnonzero(better)
            parameters[moved], cost[moved], residual[moved] = trial[moved], trial_cost[moved], trial_residual[moved]
            damping = np.clip(np.where(better, damping * 0.4, damping * 4.0), 1e-7, 1e6)
        return parameters, cost / len(self.axis.centres)
