#pragma once

#include "parameters/lume_default_parameters.h"

namespace Lume {

/// Parameters of a three-band shelf filter. A plain record: nothing here clamps.
struct HLShelfParameters {
    float gain = LumeDefaultParameters::HLShelfDefaultGain;          // overall [dB]
    float gainLow = LumeDefaultParameters::HLShelfDefaultGainLow;    // band below freqLow [dB]
    float gainMed = LumeDefaultParameters::HLShelfDefaultGainMed;    // band between [dB]
    float gainHigh = LumeDefaultParameters::HLShelfDefaultGainHigh;  // band above freqHigh [dB]
    float freqLow = LumeDefaultParameters::HLShelfDefaultFreqLow;    // [Hz]
    float freqHigh = LumeDefaultParameters::HLShelfDefaultFreqHigh;  // [Hz]
};

}  // namespace Lume
