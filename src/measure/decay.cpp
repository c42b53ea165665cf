#include "measure/decay.h"

#include <cmath>

#include "measure/line_fit.h"

namespace orvanmeasure {

double EnergyBehind(NoiseFloor const& floor, double sampleRate) {
    const double perSecond = std::log(1e6);  // a decay of 60 dB falls by e^13.8
    return floor.decays ? floor.powerAtCrosspoint * floor.decaySeconds * sampleRate / perSecond : 0.0;
}

DecayCurve::DecayCurve(double before, std::span<double const> energy, NoiseFloor const& floor, double newSampleRate)
    : levels(floor.crosspoint), decays(floor.decays), sampleRate(newSampleRate) {
    double sum = EnergyBehind(floor, sampleRate);
    for (std::size_t n = levels.size(); n-- > 0;) levels[n] = sum += energy[n] - floor.power;
    total = sum + before;
    if (!levels.empty()) levels[0] = total;
    // Noise that is stronger than its mean may leave a sum below 0 near the end.
    for (double& level : levels) level = level > 0.0 ? 10.0 * std::log10(level / total) : -HUGE_VAL;
}

DecayFit DecayCurve::Fit(double upperDb, double lowerDb) const {
    constexpr double clearanceDb = 10.0;
    DecayFit fit;
    if (IsSilent() || !decays) {
        fit.seconds = Figure::None(IsSilent() ? Missing::silent : Missing::noDecay);
        return fit;
    }
    if (EndDb() > lowerDb - clearanceDb) {
        fit.seconds = Figure::None(Missing::noRange);
        return fit;
    }
    LineFit line;
    for (std::size_t n = 0; n < levels.size() && levels[n] >= lowerDb; ++n)
        if (levels[n] <= upperDb) line.Add(static_cast<double>(n) / sampleRate, levels[n]);
    if (line.Count() < 3.0 || !(line.Slope() < 0.0)) {
        fit.seconds = Figure::None(Missing::noDecay);
        return fit;
    }
    fit.seconds = Figure::Of(-60.0 / line.Slope());
    fit.startDb = line.At(0.0);
    fit.correlation = -line.Correlation();
    return fit;
}

std::vector<float> DecayCurve::Levels(std::size_t step) const {
    std::vector<float> some;
    for (std::size_t n = 0; n < levels.size(); n += step) some.push_back(static_cast<float>(levels[n]));
    return some;
}

}  // namespace orvanmeasure
