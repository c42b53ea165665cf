#pragma once

#include <cstddef>
#include <span>

namespace orvanmeasure {

/// Where a decay ends and noise begins.
struct NoiseFloor {
    double power = 0.0;              ///< mean energy of a sample of the noise; 0 when none was found
    std::size_t crosspoint = 0;      ///< where the decay meets it, or the end of the response
    bool found = false;              ///< false: the response ends while it still decays
    bool decays = false;             ///< false: no decay could be seen at all; then only `crosspoint`, the end, counts
    double decaySeconds = 0.0;       ///< of the decay's end, for 60 dB
    double powerAtCrosspoint = 0.0;  ///< of the decay, without the noise
};

/// Finds the noise floor of a decay by iteration, after A. Lundeby, T. E. Vigran, H. Bietz and M. Vorlaender,
/// "Uncertainties of measurements in room acoustics", Acustica 81, 1995: local averages, a straight line through what
/// lies above the noise, the noise behind the crossing of the two, and again, with intervals that suit the slope.
/// One case beyond theirs: a last tenth that falls as the decay does is no noise but a response that was cut.
/// @param energy      of each sample, from the direct sound on
/// @param bandwidth   of the signal [Hz]: averages need several of its periods
NoiseFloor FindNoiseFloor(std::span<double const> energy, double sampleRate, double bandwidth);

}  // namespace orvanmeasure
