#pragma once

#include "hrtf/sdif_set.h"
#include "orvanverb/design/measured_set.h"
#include "orvanverb/hrtf/transaural_options.h"

namespace program {

/// A set of filters for a transaural network, one point for each pair of loudspeakers.
/// @param options     the network must be one that takes filters for loudspeakers
/// @param samplerate  of the filters [Hz]
/// @param equalise    whether the ears' responses are made flat in the mean over all directions first
/// @throws std::invalid_argument if the measurements can't serve a pair, or hold no sound; WorkError when the user
///         interrupts
Lume::SdifSet MakeTransauralSet(MeasuredSet const& measured, TransauralOptions const& options, int samplerate,
                                bool equalise);

/// The type of set that a network takes.
/// @throws UsageError for a name that is none, or the network that makes its filters itself
Lume::HrtfType TransauralTypeOf(std::string const& network);

}  // namespace program
