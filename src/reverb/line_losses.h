#pragma once

#include <span>
#include <vector>

#include "filters/air_absorption.h"
#include "filters/unitary_hl_shelf.h"

namespace Lume {

/// Designs the filters of the lines of a late field so that no frequency gains on its way through.
///
/// Taps are single precision: with hundreds of decibels between two bands, or with a crossover next to 0 Hz or to half
/// the sample rate, a pole may round onto the unit circle and its zero beside it, and the loop around the filter would
/// grow without bound. So an absorbent filter is judged by its taps as they are rounded, and by what its recursion
/// makes of the digits that it rounds off. If it would gain, its crossovers are moved inwards and its steps made
/// smaller by degrees until it doesn't. The louder side of a step stays: what decays slowest is what is heard. Every
/// other filter is, to the bit, that of SetAll with the same values.
///
/// Air takes nothing at 0 Hz, where rounding makes half of all such filters a hair louder than 1; in an infinite room
/// that would add up. What it gains beyond what the absorbent filter takes is taken off at all frequencies if it is
/// such a hair; for more the air filter is changed by degrees, too.
///
/// Only what concerns a filter designs it anew. Real-time safe.
class LineLosses {
public:
    explicit LineLosses(unsigned int numLines) : lines(numLines) { trials.reserve(numLines); }

    /// What the filters of a line are to be designed from.
    /// @param absorption  the overall gain is 0 dB
    /// @param metres      of air
    void Want(unsigned int line, HLShelfParameters const& absorption, float metres);
    /// Designs what is wanted. An entry of each array for each line.
    void Design(std::span<UnitaryHLShelf> absorbents, std::span<AirAbsorption> airs);
    /// Another rolloff frequency [Hz] of all air filters.
    void SetRolloffFrequency(std::span<AirAbsorption> airs, float hertz);
    /// The filters have another sample rate.
    void Forget();
    /// The largest gain of an absorbent filter over all frequencies, at most 1.
    double GetAbsorbentGain(unsigned int line) const noexcept { return lines[line].absorbentGain; }

private:
    struct Line {
        HLShelfParameters absorption;
        float metres = 0.0f;
        double absorbentGain = 1.0;
        bool wantsAbsorption = true, wantsAir = true;
    };
    /// A filter that is being designed.
    struct Trial {
        HLShelf* shelf;
        HLShelfParameters wanted, tried;
        double gainBefore;  // at which a signal comes in
        double gain = 0.0;  // the most that is made of the signal
        bool isKnown = false;
    };

    void ChangeByDegrees(double limit);
    void TryAir(AirAbsorption& air, double absorbentGain);
    void LimitAir();

    std::vector<Line> lines;
    std::vector<Trial> trials;
};

}  // namespace Lume
