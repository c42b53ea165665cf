#include "reverb/line_losses.h"

#include <algorithm>
#include <cmath>

namespace Lume {

namespace {

/// How far a filter is changed: the crossovers keep a distance from 0 Hz and from half the sample rate, the steps
/// between neighbouring bands a limit. The last one leaves a plain gain, with all poles next to 0: that never gains.
struct Degree {
    float distance;  // as a fraction of the sample rate
    float stepDb;
};
constexpr Degree degrees[] = {{1.0f / 4096.0f, 120.0f}, {1.0f / 1024.0f, 96.0f}, {1.0f / 256.0f, 72.0f},
                              {1.0f / 64.0f, 48.0f},    {1.0f / 16.0f, 24.0f},   {0.25f, 0.0f}};

/// What may be taken off all frequencies instead [linear]. In a line of 100 ms that is half a decibel a minute, less
/// than the air itself takes above a few hundred hertz.
constexpr double hair = 1e-4;
/// More than what single precision loses of a gain next to 1 [dB].
constexpr float roundingDb = 2e-6f;

/// What a filter rounds off in one sample of a signal of 1, of the one sign that adds up: measured by what grows.
constexpr double roundingError = 0x1p-26;
/// Rounding that doesn't add up to anything, also in an infinite room, whose filters leave no room for it.
constexpr double harmlessRounding = 1e-5;

/// The most that a pass makes of a signal, with the rounding of the recursion on top.
double LargestGain(HLShelf const& shelf) {
    const double magnitude = shelf.LargestMagnitude();
    const double rounding = roundingError * shelf.LargestNoiseGain();
    return rounding > harmlessRounding ? magnitude + rounding : magnitude;
}

HLShelfParameters Changed(HLShelfParameters p, Degree const& degree, float samplerate) {
    if (p.freqHigh < p.freqLow) std::swap(p.freqLow, p.freqHigh);
    const float lowest = degree.distance * samplerate;
    const float highest = (0.5f - degree.distance) * samplerate;
    p.freqLow = std::clamp(p.freqLow, lowest, highest);
    p.freqHigh = std::clamp(p.freqHigh, lowest, highest);
    // Upwards only, from band to band and back, so that a quiet band between two loud ones comes up to both.
    const float step = degree.stepDb;
    p.gainMed = std::max({p.gainMed, p.gainLow - step, p.gainHigh - step});
    p.gainLow = std::max(p.gainLow, p.gainMed - step);
    p.gainHigh = std::max(p.gainHigh, p.gainMed - step);
    for (float* gain : {&p.gainLow, &p.gainMed, &p.gainHigh}) *gain = std::clamp(*gain, -1000.0f, 0.0f);
    return p;
}

}  // namespace

double DesignAbsorption(UnitaryHLShelf& shelf, HLShelfParameters const& wanted) {
    shelf.SetAll(0.0f, wanted.gainLow, wanted.gainMed, wanted.gainHigh, wanted.freqLow, wanted.freqHigh);
    double gain = LargestGain(shelf);
    for (Degree const& degree : degrees) {
        if (gain <= 1.0) break;
        shelf.SetParameters(Changed(wanted, degree, shelf.GetSamplerate()));
        gain = LargestGain(shelf);
    }
    return gain;
}

void LimitAir(AirAbsorption& air, double absorbentGain) {
    HLShelf& shelf = air.GetShelf();
    double excess = LargestGain(shelf) * absorbentGain;
    if (excess <= 1.0) return;
    HLShelfParameters limited = air.GetParameters();
    for (Degree const& degree : degrees) {
        if (excess <= 1.0 + hair) break;
        limited = Changed(air.GetParameters(), degree, air.GetSamplerate());
        shelf.SetParameters(limited);
        excess = LargestGain(shelf) * absorbentGain;
    }
    if (excess <= 1.0) return;
    // The overall gain stands outside the recursion: no tap is rounded anew.
    limited.gain = static_cast<float>(-20.0 * std::log10(excess)) - roundingDb;
    shelf.SetParameters(limited);
}

}  // namespace Lume
