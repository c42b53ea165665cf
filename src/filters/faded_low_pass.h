#pragma once

#include "filters/faded_filters.h"
#include "filters/low_pass.h"

namespace Lume {

/// A LowPass that crossfades to a new set of five coefficients (see computeBiquadTapsForLowPass). The new filter starts
/// each fade from silence.
///
/// SetSamplerate redesigns both filters from the cutoff and damping that they were built with, without a fade: who sets
/// coefficients hands in a new set.
class FadedLowPass : public orvandsp::FadedFilters<LowPass> {
public:
    static constexpr float DefaultLowPassCrossFadeTime = 5.0f;  // [ms]

    FadedLowPass() { SetCrossFadeTime(DefaultLowPassCrossFadeTime); }
};

}  // namespace Lume
