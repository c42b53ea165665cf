#include "orvanverb/audio/peak_meter.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "orvanverb/common/text.h"

namespace program {

namespace {

/// What is not a number is as loud as can be: std::max would pass it over.
float Magnitude(float sample) {
    return std::isnan(sample) ? std::numeric_limits<float>::infinity() : std::abs(sample);
}

}  // namespace

void PeakMeter::Add(float const* const* channels, std::size_t frames) {
    lastBlock = 0.0f;
    for (std::size_t c = 0; c < peaks.size(); ++c) {
        float peak = 0.0f;
        for (std::size_t i = 0; i < frames; ++i) peak = std::max(peak, Magnitude(channels[c][i]));
        peaks[c] = std::max(peaks[c], peak);
        lastBlock = std::max(lastBlock, peak);
        if (!(peak > loudest)) continue;
        loudest = peak;
        std::size_t first = 0;
        while (Magnitude(channels[c][first]) != peak) ++first;
        place = {c, numFrames + first};
    }
    numFrames += frames;
}

void PeakMeter::Scale(float gain) {
    for (float* const peak : {&loudest, &lastBlock}) *peak *= gain;
    for (float& peak : peaks) peak *= gain;
}

std::string DecibelText(float linear) {
    if (std::isinf(linear)) return "inf";
    return linear > 0.0f ? FixedText(20.0 * std::log10(static_cast<double>(linear)), 1) : "-inf";
}

}  // namespace program
