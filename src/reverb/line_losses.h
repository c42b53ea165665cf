#pragma once

#include "filters/air_absorption.h"
#include "filters/unitary_hl_shelf.h"

namespace Lume {

/// Designs the absorbent filter of a line of the late field so that no frequency gains on its way through.
///
/// Taps are single precision: with hundreds of decibels between two bands, or with a crossover next to 0 Hz or to half
/// the sample rate, a pole may round onto the unit circle and its zero beside it, and the loop around the filter would
/// grow without bound. So the filter is judged by its taps as they are rounded, and by what its recursion makes of the
/// digits that it rounds off. If it would gain, its crossovers are moved inwards and its steps made smaller by degrees
/// until it doesn't. The louder side of a step stays: what decays slowest is what is heard. Every other filter is, to
/// the bit, that of SetAll with the same values.
/// @param wanted  the overall gain isn't used
/// @return  the largest gain of the filter over all frequencies, at most 1
double DesignAbsorption(UnitaryHLShelf& shelf, HLShelfParameters const& wanted);

/// Keeps the air filter behind an absorbent one from gaining more than that one takes. Air takes nothing at 0 Hz, where
/// rounding makes half of all such filters a hair louder than 1; in an infinite room that would add up. Such a hair is
/// taken off at all frequencies; for more the filter is changed as DesignAbsorption does it.
///
/// To be called after each new design of either.
/// @param absorbentGain  from DesignAbsorption
void LimitAir(AirAbsorption& air, double absorbentGain);

}  // namespace Lume
