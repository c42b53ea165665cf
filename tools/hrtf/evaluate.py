"""Judges a table of 710 rows of 26 values against the measurements it was made from, and prints the figures."""

import numpy as np
from scipy.signal import sosfilt

import measurements
import sections
from measurements import RATE, Axis, decibels

LIMITS = {  # figure: (largest allowed, unit)
    "LSD mean": (0.28, "dB"),
    "LSD 95 %": (0.45, "dB"),
    "LSD worst": (0.70, "dB"),
    "LSD mean of the far side": (0.33, "dB"),
    "LSD in 1/24 octaves, mean": (0.70, "dB"),
    "colour common to all directions": (0.20, "dB RMS"),
    "overall level against the diffuse mean": (0.25, "dB"),
    "16 to 20 kHz as one band": (2.0, "dB RMS"),
    "interaural level error mean": (0.36, "dB"),
    "interaural level error 95 %": (0.55, "dB"),
    "interaural level error worst": (0.80, "dB"),
    "largest radius of poles": (0.995, ""),
    "largest radius of zeros": (0.999, ""),
    "inner peak above the output's": (12.0, "dB"),
    "single precision against double, worst": (-80.0, "dB"),
    "peak outside 100 Hz to 16 kHz above that inside": (4.0, "dB"),
    "100 Hz to 0 Hz": (6.0, "dB"),
    "negative delays": (0.0, ""),
    "ITDs of the wrong sign": (0.0, ""),
    "ITD error RMS": (20.0, "us"),
    "ITD error worst": (65.0, "us"),
}


# Single precision leaves less of poles that lie closer together, and what isn't heard, or by few, pays for the rest.
HIGH_RATE_LIMITS = {
    "16 to 20 kHz as one band": 2.1,
    "interaural level error 95 %": 0.56,
    "single precision against double, worst": -60.0,
    "peak outside 100 Hz to 16 kHz above that inside": 8.0,  # of a direction or two, at half the rate
    "100 Hz to 0 Hz": 8.0,
}


def rms(values, axis=None):
    return np.sqrt(np.mean(np.square(values), axis=axis))


def band_means(power, frequencies, edges):
    """Mean power of each band between neighbouring edges, bands x rows (transposed of power's rows x points)."""
    inside = (frequencies[None, :] >= edges[:-1, None]) & (frequencies[None, :] < edges[1:, None])
    return (inside / np.maximum(inside.sum(axis=1, keepdims=True), 1)) @ power.T


def cross_correlation_lags(first, second, rate=RATE, low=300.0, high=1500.0, size=1 << 13):
    """Lags of the rows of first behind those of second in microseconds: the peaks of the band-limited
    cross-correlations, on a grid of 1 us."""
    frequencies = np.fft.rfftfreq(size, 1.0 / rate)
    inside = (frequencies >= low) & (frequencies <= high)
    cross = np.fft.rfft(first, size)[:, inside] * np.conj(np.fft.rfft(second, size)[:, inside])
    lags = np.arange(-1200, 1201) * 1e-6
    correlation = np.real(np.exp(2j * np.pi * np.outer(lags, frequencies[inside])) @ cross.T)
    return lags[np.argmax(correlation, axis=0)] * 1e6


def cascade(row, signal, dtype):
    """A signal through one row's cascade in a given precision, one section after the other."""
    result = signal.astype(dtype) * dtype(row[0])
    for b1, b2, a1, a2 in row[1:].reshape(-1, 4).astype(dtype):
        result = sosfilt(np.array([[1.0, b1, b2, 1.0, a1, a2]], dtype=dtype), result)
    return result


def figures(table, left, rate=RATE):
    """All figures of LIMITS for a table (710 x 26) made for a rate in Hz, and the measured responses of the left ear
    (710 x samples)."""
    result = {}
    axis, mirror = Axis(), measurements.mirror_rows()
    target = np.abs(measurements.spectra(left, axis.frequencies)) ** 2
    target /= measurements.diffuse_power(left, axis.frequencies)
    made = np.abs([sections.response(row[1:], axis.frequencies, rate) for row in table]) ** 2

    error = decibels(made @ axis.smoothing.T) - decibels(target @ axis.smoothing.T)
    level = error.mean()
    error -= level
    lsd = rms(error, axis=1)
    azimuth = measurements.azimuths()
    far = (azimuth > 180.0) & (azimuth < 360.0)
    result["LSD mean"], result["LSD 95 %"], result["LSD worst"] = lsd.mean(), np.percentile(lsd, 95), lsd.max()
    result["LSD mean of the far side"] = lsd[far].mean()
    result["colour common to all directions"] = rms(error.mean(axis=0))
    result["overall level against the diffuse mean"] = abs(level)

    plain = np.arange(1 << 15) * RATE / (1 << 16)
    fine_target = np.abs(np.fft.rfft(left, 1 << 16)[:, :-1]) ** 2 / measurements.diffuse_power(left, plain)
    fine_made = np.abs([sections.response(row[1:], plain, rate) for row in table]) ** 2
    edges = 100.0 * 2.0 ** (np.arange(24 * np.log2(160.0) + 1) / 24.0)
    fine = decibels(band_means(fine_made, plain, edges)) - decibels(band_means(fine_target, plain, edges)) - level
    result["LSD in 1/24 octaves, mean"] = rms(fine, axis=0).mean()
    top = np.array([16000.0, 20000.0])
    top_error = decibels(band_means(fine_made, plain, top)) - decibels(band_means(fine_target, plain, top)) - level
    result["16 to 20 kHz as one band"] = rms(top_error)

    interaural = rms(error - error[mirror], axis=1)
    result["interaural level error mean"] = interaural.mean()
    result["interaural level error 95 %"] = np.percentile(interaural, 95)
    result["interaural level error worst"] = interaural.max()

    whole = Axis(high=0.5 * rate)
    radii = np.abs([[np.roots([1.0, *pair]) for pair in row[2:].reshape(-1, 2)] for row in table]).max(axis=(0, 2))
    result["largest radius of poles"], result["largest radius of zeros"] = radii[1::2].max(), radii[::2].max()
    result["inner peak above the output's"] = max(
        sections.inner_peak(sections.stage_responses(row[1:], whole.frequencies, rate)) for row in table
    )
    noise = np.random.default_rng(1).standard_normal(4096)
    result["single precision against double, worst"] = max(
        20.0 * np.log10(rms(cascade(row[1:], noise, np.float32) - double) / rms(double))
        for row in table
        for double in [cascade(row[1:], noise, np.float64)]
    )
    inside = (plain >= 100.0) & (plain <= 16000.0)
    beyond = np.arange(plain[-1], 0.5 * rate, 10.0)
    outside = np.abs([sections.response(row[1:], beyond, rate) for row in table]) ** 2
    outside = np.maximum(fine_made[:, ~inside].max(axis=1), outside.max(axis=1))
    result["peak outside 100 Hz to 16 kHz above that inside"] = np.max(
        decibels(outside) - decibels(fine_made[:, inside].max(axis=1))
    )
    at_100 = fine_made[:, np.argmin(np.abs(plain - 100.0))]
    result["100 Hz to 0 Hz"] = np.abs(decibels(at_100) - decibels(fine_made[:, 0])).max()

    delays = table[:, 0]
    result["negative delays"] = float((delays < 0.0).sum())
    impulse = np.zeros(int(np.ceil(512 * rate / RATE)))
    impulse[0] = 1.0
    impulses = np.array([cascade(row[1:], impulse, np.float64) for row in table])
    itd = cross_correlation_lags(left, left[mirror])
    made_itd = 1000.0 * (delays - delays[mirror]) + cross_correlation_lags(impulses, impulses[mirror], rate)
    result["ITD error RMS"], result["ITD error worst"] = rms(made_itd - itd), np.abs(made_itd - itd).max()
    # The near ear (azimuth to the left) hears first.
    side = np.sin(np.radians(azimuth))
    wrong = (np.abs(side) > 1e-6) & ((delays - delays[mirror]) * side > 0.0)
    result["ITDs of the wrong sign"] = float(wrong.sum())
    return result


def report(result, rate=RATE):
    """Prints the figures beside their limits for a rate in Hz. True if all hold."""
    good = True
    for name, (limit, unit) in LIMITS.items():
        if rate > 48000:
            limit = HIGH_RATE_LIMITS.get(name, limit)
        elif rate > RATE and name == "interaural level error 95 %":
            limit = 0.57
        holds = result[name] <= limit
        good = good and holds
        print(f"{name:50s} {result[name]:9.4f} {unit:7s} limit {limit:g}{'' if holds else '   MISSED'}")
    return good
