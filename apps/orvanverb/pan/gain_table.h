#pragma once

#include <string>

#include "orvanverb/pan/pan_setup.h"

namespace program {

/// The gains of one source all around the listener, one line a degree: azimuth, then one gain for each channel of the
/// file. Methods without plain gains give the root of the energy of what a unit impulse becomes.
/// @param place  distance and elevation of the source; its azimuth is where the table begins
std::string GainTable(PanSetup& setup, ListenerPosition const& place);

/// The loudspeakers and triplets of a layout: lines "speaker NUMBER AZIMUTH ELEVATION", then "triplet A B C" with their
/// numbers, from 1.
/// @throws UsageError for a method without triplets
std::string TripletTable(PanSetup& setup);

}  // namespace program
