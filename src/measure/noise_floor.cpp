#include "measure/noise_floor.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <vector>

#include "measure/line_fit.h"

namespace orvanmeasure {

namespace {

constexpr double intervalsPer10Db = 5.0;
constexpr double aboveNoiseDb = 8.0;  // what counts as decay begins here
constexpr double lateRangeDb = 20.0;  // and is this long
constexpr double noiseShare = 0.1;    // at least so much of the end is looked at for noise
constexpr int maxRounds = 12;
constexpr double settlingPeriods = 1.5;  // of the bandwidth, until a band filter passes what comes as it is
// Noise isn't less than this below the greatest sample: what numbers and filters leave over is.
constexpr double leastNoiseDb = -140.0;
// What rises so far above the end of the decay is more of it, behind a gap.
constexpr double behindGapDb = 10.0;

double Decibels(double power) {
    return 10.0 * std::log10(power);
}

double Mean(std::span<double const> energy) {
    return energy.empty() ? 0.0
                          : std::accumulate(energy.begin(), energy.end(), 0.0) / static_cast<double>(energy.size());
}

/// Levels of neighbouring intervals [dB].
std::vector<double> Levels(std::span<double const> energy, std::size_t interval) {
    std::vector<double> levels;
    for (std::size_t begin = 0; begin + interval <= energy.size(); begin += interval)
        levels.push_back(Decibels(Mean(energy.subspan(begin, interval))));
    return levels;
}

/// A line through the levels from `upper` down to `lower` decibels, behind the greatest one; x in samples. Gaps are
/// left out: between a direct sound and its first reflection there may be nothing.
LineFit FitDecay(std::vector<double> const& levels, std::size_t interval, double upper, double lower) {
    const auto peak = std::max_element(levels.begin(), levels.end());
    auto end = levels.end();
    for (auto at = levels.end(); at != peak && *(at - 1) <= lower + behindGapDb; --at)
        if (*(at - 1) < lower) end = at - 1;
    auto begin = end;
    while (begin != peak && *(begin - 1) <= upper) --begin;
    LineFit line;
    for (auto at = begin; at != end; ++at)
        if (*at >= lower)
            line.Add((static_cast<double>(at - levels.begin()) + 0.5) * static_cast<double>(interval), *at);
    return line;
}

bool Falls(LineFit const& line) {
    return line.Count() >= 3.0 && line.Slope() < 0.0;
}

std::size_t AtLeastOne(double samples, std::size_t most) {
    return static_cast<std::size_t>(std::clamp(samples, 1.0, static_cast<double>(std::max<std::size_t>(most, 1))));
}

}  // namespace

NoiseFloor FindNoiseFloor(std::span<double const> energy, double sampleRate, double bandwidth) {
    const std::size_t length = energy.size();
    const auto samples = static_cast<double>(length);
    NoiseFloor floor;
    floor.crosspoint = length;
    const double periods = 2.0 / bandwidth * sampleRate;  // an average over less follows the signal, not its envelope
    std::size_t interval = AtLeastOne(std::max(0.01 * sampleRate, periods), length / 20);
    const auto tailStart = static_cast<std::size_t>((1.0 - noiseShare) * samples);
    const double greatest = *std::max_element(energy.begin(), energy.end());
    const double least = greatest * std::pow(10.0, leastNoiseDb / 10.0);
    double noise = std::max(Mean(energy.subspan(tailStart)), least);

    LineFit line = FitDecay(Levels(energy, interval), interval, HUGE_VAL, Decibels(noise) + aboveNoiseDb);
    if (!Falls(line)) return floor;
    double crosspoint = samples;
    for (int round = 0; round < maxRounds; ++round) {
        const double slope = line.Slope();  // [dB per sample]
        const double before = crosspoint;
        crosspoint = std::clamp((Decibels(noise) - line.At(0.0)) / slope, 0.0, samples);
        if (std::abs(crosspoint - before) < 0.05 / -slope) break;  // less than a twentieth of a decibel
        interval = AtLeastOne(std::max(10.0 / (intervalsPer10Db * -slope), periods), length / 20);
        // The noise counts from where the decay has fallen well below it.
        const auto noiseStart = static_cast<std::size_t>(std::min(crosspoint + 10.0 / -slope, samples));
        noise = std::max(Mean(energy.subspan(std::min(noiseStart, tailStart))), least);
        const double lower = Decibels(noise) + aboveNoiseDb;
        const LineFit late = FitDecay(Levels(energy, interval), interval, lower + lateRangeDb, lower);
        if (!Falls(late)) break;
        line = late;
    }
    floor.decays = true;

    // A response that was cut has taken its own end for noise. Noise is steady instead: it doesn't fall as the decay
    // would.
    const std::size_t middle = (tailStart + length) / 2;
    const double fall =
        Decibels(Mean(energy.subspan(tailStart, middle - tailStart))) - Decibels(Mean(energy.subspan(middle)));
    const double expectedFall = -line.Slope() * static_cast<double>(middle - tailStart);
    const bool meetsAtTheEnd = crosspoint > (1.0 - 1.5 * noiseShare) * samples;
    floor.found = !(meetsAtTheEnd && fall > 0.5 * expectedFall);
    if (floor.found) {
        floor.power = noise;
        floor.crosspoint = static_cast<std::size_t>(crosspoint);
    } else {
        // A filter that runs backwards takes some periods of its band to rise at the cut.
        floor.crosspoint -= AtLeastOne(settlingPeriods * sampleRate / bandwidth, length / 2);
        const std::vector<double> levels = Levels(energy.first(floor.crosspoint), interval);
        const LineFit end = FitDecay(levels, interval, levels.back() + lateRangeDb, -HUGE_VAL);
        if (Falls(end)) line = end;
    }
    floor.decaySeconds = -60.0 / line.Slope() / sampleRate;
    floor.powerAtCrosspoint = std::pow(10.0, line.At(static_cast<double>(floor.crosspoint)) / 10.0);
    return floor;
}

}  // namespace orvanmeasure
