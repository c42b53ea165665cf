#pragma once

#include <span>

namespace Lume {

/// Makes sure that a loop of two cascades of second-order sections has a gain below 1 at every frequency, and so can't
/// run away whatever delay it holds.
///
/// Where the near ear has a notch, its inverse has a peak that may reach a gain of several in the loop. Such peaks are
/// narrow, and lie above 13 kHz for loudspeakers in front and above 6 kHz for those behind: the resonance next to one
/// is widened, which flattens it and leaves the rest nearly as it was. What then is still too much is taken off the
/// gain of the first cascade. Cascades whose loop is below the limit are not touched.
///
/// Control thread only.
/// @param first, second  coefficient sets as BiquadCascade::SetCoefficients takes them
void LimitLoopGain(std::span<float> first, std::span<float> second);

}  // namespace Lume
