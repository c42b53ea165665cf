#pragma once

#include <cstddef>
#include <vector>

#include "measure/direct_sound.h"

namespace orvanmeasure {

/// A sound that stands out of its surroundings.
struct Reflection {
    double seconds = 0.0;     ///< behind the direct sound
    double levelDb = 0.0;     ///< relative to the strongest of the response
    std::size_t channel = 0;  ///< that has most of it
};

/// Level over time, the energy of all channels in steps of 0.25 ms, relative to the strongest step [dB]; -200 for
/// silence.
struct Echogram {
    double stepSeconds = 0.00025;
    std::vector<float> levels;            ///< from 2.5 ms before the direct sound on
    double startSeconds = 0.0;            ///< of the first level, behind the direct sound; negative
    std::vector<Reflection> reflections;  ///< the first clear ones, at most 12
};

/// @param direct   sample of the direct sound
/// @param seconds  how much behind it
Echogram MakeEchogram(Channels response, double sampleRate, std::size_t direct, double seconds);

}  // namespace orvanmeasure
