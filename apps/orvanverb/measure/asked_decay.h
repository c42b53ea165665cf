#pragma once

#include <span>
#include <vector>

#include "engine/orvan_verb.h"
#include "measure/room_measurement.h"

namespace program {

/// The decay time that a room's controls ask for in each band, as T30 of white noise would show it if every frequency
/// fell as the filters of the late field let it: crossovers, which are shallow, and air included [s]. No decay for an
/// infinite room.
///
/// The room itself decays a little slower, as each way through a line takes one vector of 64 samples more than its
/// delay.
/// @param sampleRate  [Hz]
std::vector<orvanmeasure::Figure> AskedDecay(Lume::OrvanVerb const& engine, double sampleRate,
                                             std::span<orvanmeasure::Band const> bands);

}  // namespace program
