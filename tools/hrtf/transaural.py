"""Makes the built-in transaural set: for 17 half angles of a loudspeaker pair the two filters of a shuffler network.

With Hi and Hc the responses from a loudspeaker to its near and its far ear, the exact filters on the sum and on the
difference of the two binaural channels are 1 / (2 sqrt2 (Hi + Hc)) and 1 / (2 sqrt2 (Hi - Hc)), up to a common delay
(Cooper and Bauck, "Prospects for transaural recording", J. Audio Eng. Soc. 37, 1989). Both are fitted with six
minimum-phase sections: first each alone by magnitude, then both together on the complex crosstalk at the ears.
"""

import numpy as np

import measurements
import sections
from fit import Refiner, warped_start
from measurements import RATE, Axis, decibels

HALF_ANGLES = 10 * np.arange(1, 18)
NETWORK_GAIN = 2.0 * np.sqrt(2.0)
LARGEST_GAIN_DB = 17.0
LARGEST_COLOUR_DB = 0.97


def ear_responses(left, frequencies):
    """Hi and Hc for each half angle, diffuse-field equalised, angles x points.

    The equaliser is applied as magnitude: a phase common to both ears changes neither crosstalk nor colour.
    """
    offset = measurements.RING_OFFSETS[measurements.RING_ELEVATIONS.index(0)]
    near = measurements.spectra(left[offset + HALF_ANGLES // 5], frequencies)
    far = measurements.spectra(left[offset + 72 - HALF_ANGLES // 5], frequencies)
    diffuse = np.sqrt(measurements.diffuse_power(left, frequencies))
    return near / diffuse, far / diffuse


def log_response(parameters, frequencies):
    """Natural logarithm of a cascade's complex response, and its derivatives (points x parameters)."""
    gain, numerators, denominators = sections.split(parameters)
    z1 = np.exp(-2j * np.pi * frequencies / RATE)
    total = np.full(len(frequencies), gain * np.log(10.0) / 20.0, dtype=complex)
    jacobian = np.empty((len(frequencies), sections.NUM_PARAMETERS), dtype=complex)
    jacobian[:, 0] = np.log(10.0) / 20.0
    column = 1
    for sign, uvs in ((1.0, numerators), (-1.0, denominators)):
        for u, v in uvs:
            c1, c2 = sections.quadratics(np.array([u, v]))
            value = 1.0 + c1 * z1 + c2 * z1**2
            total += sign * np.log(value)
            by_c1, by_c2 = sign * z1 / value, sign * z1**2 / value
            t2, t1 = np.tanh(u), np.tanh(v)
            jacobian[:, column] = (by_c1 * sections.RADIUS * t1 + by_c2 * sections.RADIUS**2) * (1.0 - t2**2)
            jacobian[:, column + 1] = by_c1 * sections.RADIUS * (1.0 + t2) * (1.0 - t1**2)
            column += 2
    return total, jacobian


class CrosstalkRefiner:
    """Levenberg-Marquardt on both filters of one angle: crosstalk, near-ear colour, and the gain limit."""

    WANTED_COLOUR_DB = 0.7
    # Where the ears are hardest to part (loudspeakers at the sides) crosstalk counts more than colour.
    WANTED_COLOUR_OF_HARD_ANGLES_DB = 0.88
    EASY_REDUCTION_DB = 13.0
    GAIN_WEIGHT = 3.0
    FLOOR = 0.03  # crosstalk below about -30 dB isn't worth a worse frequency elsewhere

    def __init__(self, near, far, frequencies):
        # Where filters may ring without anything else in the sum to see it: between points at the top, and at 0 Hz.
        self.gain_frequencies = np.concatenate([[0.0, 10.0, 20.0, 40.0], np.arange(7000.0, 22051.0, 60.0)])
        self.frequencies = np.concatenate([frequencies, self.gain_frequencies])
        self.points = len(frequencies)
        # The delay and excess phase of the near response are common to both products.
        reference = near / np.abs(near)
        self.bare = 20.0 * np.log10(np.abs(far / near))
        self.paths = NETWORK_GAIN * (near + far) / reference, NETWORK_GAIN * (near - far) / reference
        self.judged = (frequencies >= 200.0) & (frequencies <= 8000.0)
        # A part of the weight is spread evenly over ERBs, as the ear hears, the rest over Hz, as averages are often taken.
        width = np.gradient(frequencies)
        density = np.sqrt(0.35 + 0.65 * width / width[self.judged].mean())
        self.weight = np.where(self.judged, 1.0, 0.15) * density * (frequencies < 16000.0)
        self.share = self.weight[self.judged] ** 2 / np.sum(self.weight[self.judged] ** 2)
        self.colour_weight = 0.2  # per dB, against the crosstalk in relative terms
        self.strictness = 1.0  # divides the wanted colour

    def ears(self, parameters):
        """Near-ear signal and crosstalk for a unit input in one binaural channel."""
        both = [
            path * np.exp(log_response(half, self.frequencies[: self.points])[0])
            for path, half in zip(self.paths, np.split(parameters, 2))
        ]
        return 0.5 * (both[0] + both[1]), 0.5 * (both[0] - both[1])

    def colour(self, near):
        """RMS deviation of the near ear's level from its mean, in dB."""
        level = 20.0 * np.log10(np.abs(near[self.judged]))
        return np.sqrt(self.share @ (level - self.share @ level) ** 2)

    def colour_over_hertz(self, parameters):
        """The same with each Hz weighted alike."""
        frequencies = self.frequencies[: self.points][self.judged]
        level = 20.0 * np.log10(np.abs(self.ears(parameters)[0][self.judged]))
        even = np.arange(frequencies[0], frequencies[-1], 10.0)
        return np.std(np.interp(even, frequencies, level))

    def crosstalk(self, near, cross):
        """Mean crosstalk in dB."""
        return self.share @ (20.0 * np.log10(np.abs(cross / near)[self.judged] + 1e-3))

    def wanted_colour(self, near, cross):
        easy = self.share @ self.bare[self.judged] - self.crosstalk(near, cross) > self.EASY_REDUCTION_DB
        return (self.WANTED_COLOUR_DB if easy else self.WANTED_COLOUR_OF_HARD_ANGLES_DB) / self.strictness

    def residuals(self, parameters, crosstalk_weight):
        logs = [log_response(half, self.frequencies) for half in np.split(parameters, 2)]
        audible = [(total[: self.points], jacobian[: self.points]) for total, jacobian in logs]
        products = [path * np.exp(total) for path, (total, _) in zip(self.paths, audible)]
        near, cross = 0.5 * (products[0] + products[1]), 0.5 * (products[0] - products[1])
        by_sum = (0.5 * products[0] / near)[:, None] * audible[0][1]
        by_difference = (0.5 * products[1] / near)[:, None] * audible[1][1]
        by_log_near = np.hstack([by_sum, by_difference])
        ratio = cross / near
        by_ratio = np.hstack([by_sum, -by_difference]) - ratio[:, None] * by_log_near

        to_db = 20.0 / np.log(10.0)
        weighted, by_weighted = crosstalk_weight * ratio, crosstalk_weight[:, None] * by_ratio
        colour_weight = self.colour_weight * self.weight * to_db
        residual = [weighted.real, weighted.imag, colour_weight * np.log(np.maximum(np.abs(near), 1e-6))]
        jacobian = [by_weighted.real, by_weighted.imag, colour_weight[:, None] * by_log_near.real]
        for half, (total, by_log) in enumerate(logs):
            excess = to_db * total.real - LARGEST_GAIN_DB
            over = excess > 0.0
            residual.append(np.where(over, self.GAIN_WEIGHT * excess, 0.0))
            block = np.zeros((len(self.frequencies), 2 * sections.NUM_PARAMETERS))
            columns = slice(half * sections.NUM_PARAMETERS, (half + 1) * sections.NUM_PARAMETERS)
            block[over, columns] = self.GAIN_WEIGHT * to_db * by_log.real[over]
            jacobian.append(block)
        return np.concatenate(residual), np.vstack(jacobian)

    def refine(self, parameters, rounds=8, iterations=20):
        for _ in range(rounds):
            near, cross = self.ears(parameters)
            # Crosstalk is bought with colour up to what is wanted.
            self.colour_weight *= np.clip(self.colour(near) / self.wanted_colour(near, cross), 0.7, 1.4)
            self.colour_weight = np.clip(self.colour_weight, 0.05, 2.0)
            # Reweighting by the present crosstalk turns least squares towards the mean in decibels.
            weight = self.weight / np.sqrt(self.FLOOR**2 + np.abs(cross / near) ** 2)
            parameters = self.minimise(parameters, weight, iterations)
        return parameters

    def minimise(self, parameters, weight, iterations):
        damping = 1e-2
        residual, jacobian = self.residuals(parameters, weight)
        for _ in range(iterations):
            normal, gradient = jacobian.T @ jacobian, jacobian.T @ residual
            damped = normal + np.diag(damping * (np.diag(normal) + 1e-3) + 1e-9)
            trial = parameters + np.clip(-np.linalg.solve(damped, gradient), -0.7, 0.7)
            for start in (0, sections.NUM_PARAMETERS):
                inside = slice(start + 1, start + sections.NUM_PARAMETERS)
                trial[inside] = np.clip(trial[inside], -4.0, 4.0)
            trial_residual, trial_jacobian = self.residuals(trial, weight)
            if trial_residual @ trial_residual < residual @ residual:
                parameters, residual, jacobian = trial, trial_residual, trial_jacobian
                damping = max(damping * 0.4, 1e-8)
            else:
                damping = min(damping * 4.0, 1e6)
        return parameters

    def score(self, parameters):
        """Smaller is better: mean crosstalk in dB plus a price for colour and gain beyond what is wanted."""
        near, cross = self.ears(parameters)
        gain = max(
            20.0 / np.log(10.0) * log_response(half, self.frequencies)[0].real.max()
            for half in np.split(parameters, 2)
        )
        return (
            self.crosstalk(near, cross)
            + 20.0 * max(0.0, self.colour(near) - 1.1 * self.wanted_colour(near, cross))
            + 10.0 * max(0.0, gain - LARGEST_GAIN_DB - 0.5)
        )

    def level(self, parameters):
        """Mean level of the near ear in dB."""
        return self.share @ (20.0 * np.log10(np.abs(self.ears(parameters)[0][self.judged])))


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


def make(path, log=print):
    """The rows (34 x 26) and their figures, from a file with the measurements."""
    # Finer than for magnitudes: where the two products nearly cancel, the crosstalk changes within a few Hz.
    left, axis = measurements.load_left_ear(path), Axis(largest_spacing=25.0)
    near, far = ear_responses(left, axis.frequencies)
    # Regularised, so that the difference filter doesn't amplify without bound where both ears hear the same.
    floor = (10.0 ** (-LARGEST_GAIN_DB / 20.0) / NETWORK_GAIN / 2.0) ** 2
    wanted = np.stack([near + far, near - far], axis=1).reshape(2 * len(HALF_ANGLES), -1)
    level = -decibels(NETWORK_GAIN**2 * (np.abs(wanted) ** 2 + floor))
    window = np.ones(11) / 11.0
    starts = np.array([
        warped_start(decibels(np.convolve(10.0 ** (row / 10.0), window, "same")), axis.frequencies) for row in level
    ])
    parameters = Refiner(axis, level).refine(starts, np.arange(len(level)), 80)[0].reshape(len(HALF_ANGLES), -1)

    refiners = [CrosstalkRefiner(n, f, axis.frequencies) for n, f in zip(near, far)]
    best = [refiner.refine(start) for refiner, start in zip(refiners, parameters)]
    generator = np.random.default_rng(1)

    def try_start(number, start):
        trial = refiners[number].refine(start)
        if refiners[number].score(trial) < refiners[number].score(best[number]):
            best[number] = trial

    for _ in range(3):
        for number in range(len(best)):
            for neighbour in (number - 1, number + 1):
                if 0 <= neighbour < len(best):
                    try_start(number, best[neighbour])
        # Angles that stayed behind get shaken starts too.
        scores = [refiner.score(pair) for refiner, pair in zip(refiners, best)]
        for number in np.argsort(scores)[::-1][:5]:
            for _ in range(3):
                try_start(number, best[number] + generator.normal(0.0, 0.4, len(best[number])))
        log(f"  refined: mean score {np.mean(scores):.3f}, worst {np.max(scores):.3f}")
    for number, refiner in enumerate(refiners):
        while refiner.colour_over_hertz(best[number]) > LARGEST_COLOUR_DB and refiner.strictness < 2.0:
            refiner.strictness *= 1.15
            best[number] = refiner.refine(best[number])
    rows = []
    for refiner, pair in zip(refiners, best):
        for half in np.split(pair, 2):
            row = sections.coefficient_row(half)
            row[0] *= 10.0 ** (-refiner.level(pair) / 20.0)
            rows.append(sections.order_for_least_inner_peak(row, axis.frequencies, RATE))
    rows = np.round(np.column_stack([np.zeros(len(rows)), rows]), 6)
    return rows, figures(rows, left)
