#pragma once

#include "parameters/lume_default_parameters.h"

namespace Lume {

/// Gain and decay of the late field. A plain record: nothing here clamps.
struct ReverbDspParameters {
    float gain = LumeDefaultParameters::DefaultReverbGain;                                      // [dB]
    float decayTime = LumeDefaultParameters::DefaultDecayTime;                                  // to -60 dB [s]
    float relativeDecayLow = LumeDefaultParameters::DefaultRelativeDecayLow;                    // factor of decayTime
    float relativeDecayMedium = LumeDefaultParameters::DefaultRelativeDecayMedium;              // factor of decayTime
    float relativeDecayHigh = LumeDefaultParameters::DefaultRelativeDecayHigh;                  // factor of decayTime
    float crossoverFrequencyLow = LumeDefaultParameters::DefaultReverbCrossoverFrequencyLow;    // [Hz]
    float crossoverFrequencyHigh = LumeDefaultParameters::DefaultReverbCrossoverFrequencyHigh;  // [Hz]
};

}  // namespace Lume
