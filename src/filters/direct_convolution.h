#pragma once

#include <vector>

namespace Lume {

/// Convolves one channel with a finite impulse response, sample by sample, in direct form.
///
/// The newest sample enters the memory before the sum is formed, so that both taps[0] and taps[1] act on it: the
/// impulse response is taps[0] + taps[1], taps[2], taps[3], ... Convolution by FFT gives taps[0], taps[1], taps[2], ...
/// (kept: quirks.md 5)
///
/// The products beyond the first are added up in four partial sums, as vector units do it. Real-time safe.
/// @param output, input  may be the same array
/// @param taps           at least one
/// @param state          as long as taps; the newest sample first
void ConvolveDirectly(float* output, float const* input, unsigned long numSamples, std::vector<float> const& taps,
                      std::vector<float>& state) noexcept;

}  // namespace Lume
