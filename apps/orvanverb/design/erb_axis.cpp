#include "orvanverb/design/erb_axis.h"

#include <algorithm>
#include <cmath>

namespace program {

namespace {

constexpr double lowestHz = 30.0, largestStepHz = 60.0, largestStepErb = 0.1;
constexpr double highestHeardHz = 20000.0, largestStepShare = 60.0 / 44100.0;
constexpr double firstCentreHz = 100.0, lastCentreHz = 16000.0, largestCentreStepErb = 0.51;
// Edges of a band are half an ERB wide in all, so that no point enters at once.
constexpr double bandReachErb = 0.75, edgeErb = 0.5;

double ErbNumber(double hertz) {
    return 21.4 * std::log10(1.0 + 0.00437 * hertz);
}

double ErbFrequency(double number) {
    return (std::pow(10.0, number / 21.4) - 1.0) / 0.00437;
}

/// Half the way from the neighbour below to the one above; at the ends the whole way to the only one.
std::vector<double> Spacing(std::vector<double> const& values) {
    std::vector<double> spacing(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
        const std::size_t below = i == 0 ? 0 : i - 1, above = std::min(i + 1, values.size() - 1);
        spacing[i] = (values[above] - values[below]) / static_cast<double>(above - below);
    }
    return spacing;
}

}  // namespace

ErbAxis::ErbAxis(double samplerate) {
    const double nyquist = 0.5 * samplerate;
    const auto largestStep = [=](double hertz) {
        return hertz < highestHeardHz ? largestStepHz : std::max(largestStepHz, largestStepShare * samplerate);
    };
    for (double hertz = lowestHz; hertz < nyquist;
         hertz = std::min(hertz + largestStep(hertz), ErbFrequency(ErbNumber(hertz) + largestStepErb)))
        frequencies.push_back(hertz);
    frequencies.push_back(nyquist);

    std::vector<double> numbers;
    for (const double hertz : frequencies) numbers.push_back(ErbNumber(hertz));
    widths = Spacing(numbers);
    // Weighted by width in Hz: each band is a mean over frequency.
    const std::vector<double> widthsHz = Spacing(frequencies);
    // Spread evenly, so that the last one lies where it should: what is left beyond it would be nobody's.
    const double first = ErbNumber(firstCentreHz), last = ErbNumber(std::min(lastCentreHz, 0.85 * nyquist));
    const double numSteps = std::ceil((last - first) / largestCentreStepErb);
    for (double step = 0.0; step <= numSteps; ++step) {
        const double centre = first + (last - first) * step / numSteps;
        const auto begin = std::upper_bound(numbers.begin(), numbers.end(), centre - bandReachErb);
        Band band{static_cast<std::size_t>(begin - numbers.begin()), {}};
        double sum = 0.0;
        for (std::size_t i = band.first; i < numbers.size() && numbers[i] < centre + bandReachErb; ++i) {
            const double edge = std::min(1.0, (bandReachErb - std::abs(numbers[i] - centre)) / edgeErb);
            band.weights.push_back(edge * widthsHz[i]);
            sum += band.weights.back();
        }
        for (double& weight : band.weights) weight /= sum;
        bands.push_back(std::move(band));
    }
}

std::vector<double> ErbAxis::BandLevels(std::vector<double> const& level) const {
    std::vector<double> power(level.size()), result;
    std::transform(level.begin(), level.end(), power.begin(), [](double db) { return std::pow(10.0, 0.1 * db); });
    for (Band const& band : bands) {
        double sum = 0.0;
        for (std::size_t i = 0; i < band.weights.size(); ++i) sum += band.weights[i] * power[band.first + i];
        result.push_back(Decibels(sum));
    }
    return result;
}

double Decibels(double power) {
    return 10.0 * std::log10(std::max(power, 1e-12));
}

}  // namespace program
