#include "orvanverb/measure/asked_decay.h"

#include <algorithm>
#include <cmath>
#include <complex>

#include "filters/air_absorption.h"
#include "math/fft.h"
#include "measure/line_fit.h"
#include "parameters/lume_default_parameters.h"
#include "reverb/delgen.h"
#include "reverb/line_losses.h"

namespace program {

namespace {

using Lume::LumeDefaultParameters;

constexpr unsigned int responseLength = 16384;  // of a line's filters [samples]

/// The delays of the late field's lines [s], as the engine derives them.
std::vector<float> LineDelays(Lume::OrvanVerb const& engine, double sampleRate) {
    const unsigned int count = engine.GetNumInternals();
    const float lowest = 64000.0f / static_cast<float>(sampleRate);
    const float start =
        std::clamp(engine.GetReverbStart() - engine.GetClusterStart(), 0.0f, LumeDefaultParameters::MaxReverbStart);
    const float density = std::clamp(engine.GetReverbModalDensity(), LumeDefaultParameters::MinReverbModalDensity,
                                     LumeDefaultParameters::MaxReverbModalDensity);
    const float distribution = count < 9 ? LumeDefaultParameters::DefaultReverbDistr : 0.3f;
    Lume::Delgen generator(count, lowest, lowest, distribution);
    float const* const milliseconds = generator.SetMinSum(std::max(lowest, start), density * 1000.0f, distribution);
    std::vector<float> seconds;
    for (unsigned int i = 0; i < count; ++i) seconds.push_back(0.001f * std::clamp(milliseconds[i], lowest, 1500.0f));
    return seconds;
}

/// What one line loses at each frequency [dB].
std::vector<double> LineLosses(Lume::OrvanVerb const& engine, double sampleRate, float delaySeconds) {
    const Lume::ReverbDspParameters decay = engine.GetReverbParameters();
    const float passDb = -60.0f * delaySeconds / decay.decayTime;
    Lume::UnitaryHLShelf shelf;
    shelf.SetSamplerate(static_cast<float>(sampleRate));
    Lume::AirAbsorption air;
    air.SetSamplerate(static_cast<float>(sampleRate));
    air.SetRolloffFrequency(engine.GetAirAbsorptionRolloffFrequency());
    constexpr float speedOfSound = 340.0f;  // [m/s], as in the late field
    Lume::LineLosses losses(1);
    losses.Want(0,
                {.gain = 0.0f,
                 .gainLow = passDb / decay.relativeDecayLow,
                 .gainMed = passDb / decay.relativeDecayMedium,
                 .gainHigh = passDb / decay.relativeDecayHigh,
                 .freqLow = decay.crossoverFrequencyLow,
                 .freqHigh = decay.crossoverFrequencyHigh},
                speedOfSound * delaySeconds);
    losses.Design({&shelf, 1}, {&air, 1});
    std::vector<float> response(responseLength, 0.0f);
    response[0] = 1.0f;
    shelf.Process(response.data(), response.data(), responseLength);
    if (engine.UsesAirAbsorption()) air.Process(response.data(), response.data(), responseLength);
    std::vector<std::complex<float>> spectrum(response.begin(), response.end());
    const orvandsp::FFT<float> fft(responseLength, 1.0f, 1.0f, 1.0f, 1.0f);
    fft.process(spectrum.data(), orvandsp::FFT<float>::forward);
    std::vector<double> lossesDb;
    for (unsigned int bin = 0; bin <= responseLength / 2; ++bin)
        lossesDb.push_back(-20.0 * std::log10(std::max(1e-20, static_cast<double>(std::abs(spectrum[bin])))));
    return lossesDb;
}

/// T30 of a sum of exponential decays of equal power [s].
double DecayOfSum(std::span<double const> seconds) {
    const double longest = *std::max_element(seconds.begin(), seconds.end());
    const auto levelAt = [&](double time) {
        double energy = 0.0;
        for (const double decay : seconds) energy += decay * std::pow(10.0, -6.0 * time / decay);
        return 10.0 * std::log10(energy);
    };
    const double start = levelAt(0.0);
    orvanmeasure::LineFit line;
    constexpr int steps = 300;  // over 45 dB of the slowest decay
    for (int i = 0; i <= steps; ++i) {
        const double time = 0.75 * longest * i / steps;
        const double level = levelAt(time) - start;
        if (level <= -5.0 && level >= -35.0) line.Add(time, level);
    }
    return -60.0 / line.Slope();
}

}  // namespace

std::vector<orvanmeasure::Figure> AskedDecay(Lume::OrvanVerb const& engine, double sampleRate,
                                             std::span<orvanmeasure::Band const> bands) {
    using orvanmeasure::Figure;
    if (engine.IsInfinite()) return std::vector<Figure>(bands.size(), Figure::None(orvanmeasure::Missing::noDecay));
    const std::vector<float> delays = LineDelays(engine, sampleRate);
    std::vector<double> losses(responseLength / 2 + 1, 0.0);
    double delaySum = 0.0;
    for (const float delay : delays) {
        const std::vector<double> line = LineLosses(engine, sampleRate, delay);
        for (std::size_t bin = 0; bin < losses.size(); ++bin) losses[bin] += line[bin];
        delaySum += static_cast<double>(delay);
    }
    std::vector<Figure> asked;
    for (orvanmeasure::Band const& band : bands) {
        const double binsPerHz = responseLength / sampleRate;
        const auto first = static_cast<std::size_t>(std::ceil(band.lowHz * binsPerHz));
        const auto last = std::max(first, static_cast<std::size_t>(band.highHz * binsPerHz));
        std::vector<double> decays;
        const std::size_t step = (last - first) / 64 + 1;  // enough for a smooth law
        for (std::size_t bin = first; bin <= last; bin += step) decays.push_back(60.0 * delaySum / losses[bin]);
        asked.push_back(Figure::Of(DecayOfSum(decays)));
    }
    return asked;
}

}  // namespace program
