#pragma once

#include "hrtf/hrtf_data.h"
#include "hrtf/symmetric_transaural_data_loader.h"
#include "orvanverb/design/measured_set.h"

namespace program {

/// A set of filters as if it had been measured, to be converted to another rate or form.
MeasuredSet MeasureSet(Lume::HrtfData const& filters);

/// What the symmetric shuffler's filters say of the head that they were made for: the responses to both loudspeakers of
/// each pair, with the phase between the ears, which filters for headphones have no place for.
MeasuredSet MeasurePairs(Lume::SymmetricTransauralDataLoader const& pairs);

}  // namespace program
