#include "support/decay.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace {

/// A second-order section, after R. Bristow-Johnson, "Cookbook formulae for audio EQ biquad filter coefficients".
class Section {
public:
    enum Kind { lowPass, highPass };

    Section(Kind kind, double cutoff, double sampleRate, double q) {
        const double w = 2.0 * std::numbers::pi * cutoff / sampleRate;
        const double alpha = std::sin(w) / (2.0 * q);
        const double a0 = 1.0 + alpha;
        const double sign = kind == lowPass ? 1.0 : -1.0;
        b0 = (1.0 - sign * std::cos(w)) / 2.0 / a0;
        b1 = sign * 2.0 * b0;
        a1 = -2.0 * std::cos(w) / a0;
        a2 = (1.0 - alpha) / a0;
    }

    double operator()(double x) {
        const double y = b0 * x + s1;
        s1 = b1 * x - a1 * y + s2;
        s2 = b0 * x - a2 * y;
        return y;
    }

private:
    double b0, b1, a1, a2;
    double s1 = 0.0;
    double s2 = 0.0;
};

}  // namespace

double DecayTimeOf(std::span<double const> energy, double sampleRate) {
    // The energy still to come, from each sample on.
    std::vector<double> remaining(energy.size());
    double sum = 0.0;
    for (std::size_t n = energy.size(); n-- > 0;) remaining[n] = sum += energy[n];

    double count = 0.0, sumX = 0.0, sumY = 0.0, sumXX = 0.0, sumXY = 0.0;
    bool reached = false;
    for (std::size_t n = 0; n < remaining.size(); ++n) {
        const double level = 10.0 * std::log10(remaining[n] / remaining[0]);
        if (level > -5.0) continue;
        if (level < -35.0) {
            reached = true;
            break;
        }
        const double time = static_cast<double>(n) / sampleRate;
        count += 1.0;
        sumX += time;
        sumY += level;
        sumXX += time * time;
        sumXY += time * level;
    }
    if (!reached) return std::numeric_limits<double>::quiet_NaN();
    const double slope = (count * sumXY - sumX * sumY) / (count * sumXX - sumX * sumX);  // [dB/s]
    return -60.0 / slope;
}

std::vector<double> OctaveBandEnergy(std::span<std::vector<float> const> channels, double sampleRate, double centre) {
    std::vector<double> energy(channels.empty() ? 0 : channels[0].size(), 0.0);
    for (std::vector<float> const& channel : channels) {
        std::vector<Section> sections;
        for (const int pair : {1, 3, 5}) {  // poles of the Butterworth filter of order 6
            const double q = 0.5 / std::cos(pair * std::numbers::pi / 12.0);
            sections.emplace_back(Section::highPass, centre / std::numbers::sqrt2, sampleRate, q);
            sections.emplace_back(Section::lowPass, centre * std::numbers::sqrt2, sampleRate, q);
        }
        for (std::size_t n = 0; n < channel.size(); ++n) {
            auto y = static_cast<double>(channel[n]);
            for (Section& section : sections) y = section(y);
            energy[n] += y * y;
        }
    }
    return energy;
}

double MeasureDecay(std::span<std::vector<float> const> channels, double sampleRate, double centre) {
    return DecayTimeOf(OctaveBandEnergy(channels, sampleRate, centre), sampleRate);
}
