#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "orvanverb/audio/peak_meter.h"
#include "orvanverb/audio/signal_source.h"
#include "orvanverb/audio/tail.h"
#include "orvanverb/layout/speaker_layout.h"

namespace program {

/// What signals run through, vector by vector: a room, a panner, a decoder.
struct Machine {
    std::size_t vectorSize = 0;
    std::size_t numInputs = 0;
    SpeakerLayout const* layout = nullptr;  // of its outputs
    std::vector<std::string> channels;      // of the file, in words
    Tail tail{std::nullopt};
    /// Called before each vector with the number of frames at its end: what is due before them happens now.
    std::function<void(std::uint64_t beforeFrame)> prepare;
    std::function<void(float** outputs, float** inputs)> process;
    /// Called when what process gave was not finite, or beyond all bounds: empties what made it.
    std::function<void()> clear;
    std::string remark;                          // on its channels, in the end; empty: none
    std::function<std::string()> pendingRemark;  // on a scene that goes on behind the end; empty if it doesn't
};

/// How a rendering ended.
struct StreamEnd {
    bool diedAway = true;      ///< false if a tail of unknown length came to its bound before the sound had died away
    std::uint64_t numBad = 0;  ///< output samples that were not finite or beyond all bounds, and became silence
};

/// Gets the channels of the file, piece by piece.
using PieceWriter = std::function<void(float const* const* channels, std::size_t frames)>;

/// Sends a whole signal and its tail through a machine. One vector after the other: memory does not grow with the
/// length.
/// @param samplerate  [Hz]
/// @param gain        of the output
/// @throws what source and write throw
StreamEnd Stream(SignalSource& source, Machine const& machine, int samplerate, float gain, PeakMeter& meter,
                 PieceWriter const& write);

}  // namespace program
