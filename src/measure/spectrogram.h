#pragma once

#include <vector>

#include "measure/direct_sound.h"

namespace orvanmeasure {

/// Power over time and frequency, summed over channels: frames of about 43 ms under Hann's window, overlapping by half.
struct Spectrogram {
    double frameSeconds = 0.0;  ///< from one frame's middle to the next
    double binHz = 0.0;
    std::size_t numBins = 0;   ///< from 0 Hz to half the sample rate
    std::vector<float> power;  ///< frames x bins, row-major
    std::size_t NumFrames() const noexcept { return numBins == 0 ? 0 : power.size() / numBins; }

    /// The mean frequency of a frame, weighted with power [Hz]; 0 for a silent one. Falls as the highs die away.
    double CentroidHz(std::size_t frame) const;
};

/// @param begin, end  samples; the first frame's middle stands at `begin`
Spectrogram MakeSpectrogram(Channels response, double sampleRate, std::size_t begin, std::size_t end);

}  // namespace orvanmeasure
