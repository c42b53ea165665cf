#include "reverb/line_losses.h"

#include <algorithm>
#include <cmath>
#include <utility>

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

/// Whether that is above a limit at 0 Hz already, as it is of most filters that fail.
bool FailsAtZeroHertz(HLShelf const& shelf, double limit) {
    constexpr double margin = 1.0 + 1e-9;  // above what either side rounds off
    const auto [numerator, denominator] = shelf.AtZeroHertz();
    const double rounding = roundingError > harmlessRounding * margin * denominator ? roundingError : 0.0;
    return numerator + rounding > limit * margin * denominator;
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

bool AreSame(HLShelfParameters const& a, HLShelfParameters const& b) {
    return a.gain == b.gain && a.gainLow == b.gainLow && a.gainMed == b.gainMed && a.gainHigh == b.gainHigh &&
           a.freqLow == b.freqLow && a.freqHigh == b.freqHigh;
}

}  // namespace

/// Changes the filters on trial by degrees until each makes at most `limit` of a signal. Degree by degree, and not
/// filter by filter: neighbours are designed from much the same and mostly fail together, so that the processor knows
/// what comes next.
void LineLosses::ChangeByDegrees(double limit) {
    if (trials.empty()) return;
    const auto judge = [limit](Trial& trial) {
        trial.isKnown = !FailsAtZeroHertz(*trial.shelf, limit / trial.gainBefore);
        if (trial.isKnown) trial.gain = LargestGain(*trial.shelf) * trial.gainBefore;
    };
    for (Trial& trial : trials) judge(trial);
    for (Degree const& degree : degrees) {
        HLShelf const* neighbour = trials.front().shelf;
        for (Trial& trial : trials) {
            if (trial.isKnown && trial.gain <= limit) continue;
            const HLShelfParameters changed = Changed(trial.wanted, degree, trial.shelf->GetSamplerate());
            if (AreSame(changed, trial.tried)) continue;
            trial.tried = changed;
            trial.shelf->ExpectCrossoversOf(*std::exchange(neighbour, trial.shelf));
            trial.shelf->SetParameters(changed);
            judge(trial);
        }
    }
    for (Trial& trial : trials)
        if (!trial.isKnown) trial.gain = LargestGain(*trial.shelf) * trial.gainBefore;
}

void LineLosses::Want(unsigned int line, HLShelfParameters const& absorption, float metres) {
    Line& wanted = lines[line];
    wanted.wantsAbsorption = wanted.wantsAbsorption || !AreSame(wanted.absorption, absorption);
    wanted.wantsAir = wanted.wantsAir || wanted.metres != metres;
    wanted.absorption = absorption;
    wanted.metres = metres;
}

void LineLosses::Design(std::span<UnitaryHLShelf> absorbents, std::span<AirAbsorption> airs) {
    trials.clear();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        HLShelfParameters const& wanted = lines[i].absorption;
        if (!lines[i].wantsAbsorption) continue;
        if (i > 0) absorbents[i].ExpectCrossoversOf(absorbents[i - 1]);
        absorbents[i].SetParameters(wanted);
        trials.push_back({.shelf = &absorbents[i], .wanted = wanted, .tried = wanted, .gainBefore = 1.0});
    }
    ChangeByDegrees(1.0);
    auto done = trials.cbegin();
    for (Line& line : lines) {
        if (!line.wantsAbsorption) continue;
        line.wantsAbsorption = false;
        line.wantsAir = line.wantsAir || line.absorbentGain != done->gain;
        line.absorbentGain = done++->gain;
    }
    trials.clear();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (!lines[i].wantsAir) continue;
        lines[i].wantsAir = false;
        if (i > 0) airs[i].GetShelf().ExpectCrossoversOf(airs[i - 1].GetShelf());
        airs[i].SetDistance(lines[i].metres);
        TryAir(airs[i], lines[i].absorbentGain);
    }
    LimitAir();
}

void LineLosses::SetRolloffFrequency(std::span<AirAbsorption> airs, float hertz) {
    trials.clear();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (i > 0) airs[i].GetShelf().ExpectCrossoversOf(airs[i - 1].GetShelf());
        airs[i].SetRolloffFrequency(hertz);
        TryAir(airs[i], lines[i].absorbentGain);
    }
    LimitAir();
}

void LineLosses::TryAir(AirAbsorption& air, double absorbentGain) {
    trials.push_back({.shelf = &air.GetShelf(),
                      .wanted = air.GetParameters(),
                      .tried = air.GetParameters(),
                      .gainBefore = absorbentGain});
}

void LineLosses::LimitAir() {
    ChangeByDegrees(1.0 + hair);
    for (Trial& trial : trials) {
        if (trial.gain <= 1.0) continue;
        // The overall gain stands outside the recursion: no tap is rounded anew.
        trial.tried.gain = static_cast<float>(-20.0 * std::log10(trial.gain)) - roundingDb;
        trial.shelf->SetParameters(trial.tried);
    }
}

void LineLosses::Forget() {
    for (Line& line : lines) line.wantsAbsorption = line.wantsAir = true;
}

}  // namespace Lume
