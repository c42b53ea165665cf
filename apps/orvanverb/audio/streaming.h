#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "orvanverb/audio/audio_output.h"
#include "orvanverb/audio/peak_meter.h"
#include "orvanverb/audio/signal_source.h"
#include "orvanverb/audio/tail.h"

namespace program {

/// A rendering in general: what signals run through, vector by vector.
struct Streaming {
    int samplerate = 0;  // [Hz]
    std::size_t vectorSize = 0;
    std::size_t numInputs = 0, numOutputs = 0;
    std::vector<std::size_t> fileOrder;  // output of each channel of the file; beyond all outputs: silence
    Tail tail{std::nullopt};
    float gain = 1.0f;  // of the output
    /// Called before each vector with the number of frames at its end: what is due before them happens now.
    std::function<void(std::uint64_t beforeFrame)> prepare;
    std::function<void(float** outputs, float** inputs)> process;
    /// Called when what process gave was not finite, or beyond all bounds: empties what made it.
    std::function<void()> clear;
};

/// How a rendering ended.
struct StreamEnd {
    bool diedAway = true;      ///< false if a tail of unknown length came to its bound before the sound had died away
    std::uint64_t numBad = 0;  ///< output samples that were not finite or beyond all bounds, and became silence
};

/// Sends a whole signal and its tail through into a file. One vector after the other: memory does not grow with the
/// length.
/// @throws what source and output throw
StreamEnd Stream(SignalSource& source, Streaming const& streaming, AudioOutput& output, PeakMeter& meter);

/// Tells what was written: length and speed, and the peak of each channel.
/// @param channels  what each channel of the file is, in words
void ReportOutput(std::string const& path, AudioFormat const& format, AudioOutput const& output, PeakMeter const& meter,
                  std::vector<std::string> const& channels, int samplerate, double elapsedSeconds);

/// Ends a rendering that has written, and told about, an output in which samples had to be replaced.
/// @throws WorkError with their number, if there were any
void RequireSound(std::string const& path, std::uint64_t numBad);

}  // namespace program
