#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "hrtf/hrtf_data.h"
#include "hrtf/sdif_set.h"
#include "orvanverb/design/measured_set.h"

namespace program {

/// What becomes of a measured set.
struct ConversionSettings {
    int samplerate = 44100;    // of the filters [Hz]
    bool fir = false;          // impulse responses; else a delay and six second-order sections
    std::size_t length = 512;  // most samples of an impulse response
    /// Takes out what all directions have in common: the power mean over the sphere then is flat, at 0 dB. This is what
    /// the built-in set has, and what the engine's filters for the room expect.
    bool equalise = true;
    /// The directions to convert, by their positions, one at least; none: all of them. All count for the mean over the
    /// sphere.
    std::function<bool(Lume::CartesianVector const&)> wanted;
    /// Told how much of the fit is done, 0 to 1. From any thread, one call at a time. What it throws ends the fit.
    std::function<void(double part)> tell;
};

/// How good the fit is, over all ears: RMS difference in bands of one ERB [dB].
struct ConversionErrors {
    double mean = 0.0, worst = 0.0;
};

/// Turns measurements into a set that the engine reads.
///
/// Sections take the magnitude with the least phase that it can have, on a frequency axis, so that no resampling stands
/// between; beyond 95 % of half the measurement's rate the level is held, and falls by 3 dB an octave. The delay
/// between the ears is what the filters lack against the measurements below 1.5 kHz, by cross-correlation. Impulse
/// responses keep their phase and with it their delays, except for what all of them have in common.
/// @param errors  filled for sections
/// @throws std::invalid_argument for a measurement without sound
Lume::SdifSet ConvertSet(MeasuredSet const& measured, ConversionSettings const& settings, ConversionErrors& errors);

/// A set as it stands, to be written to a file.
Lume::SdifSet CopySet(Lume::HrtfData const& filters);

}  // namespace program
