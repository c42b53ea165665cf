#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace program {

/// What sounds in the room: planar blocks of source signals, until they end.
class SignalSource {
public:
    virtual ~SignalSource() = default;

    virtual unsigned int NumChannels() const = 0;

    /// A recording that it reads.
    struct Origin {
        std::string path;
        unsigned int numChannels;
        int samplerate;           // of the file [Hz]
        std::uint64_t numFrames;  // at that rate; 0 where the file doesn't tell
    };
    virtual std::vector<Origin> Origins() const { return {}; }

    /// Writes `frames` samples to each channel, silence behind the end.
    /// @return frames before the end; fewer than asked: it's over
    virtual std::size_t Read(float* const* channels, std::size_t frames) = 0;

    /// Expected length [frames], 0 where it isn't known.
    virtual double ExpectedFrames() const = 0;

    /// What to tell of it when it has ended.
    virtual std::vector<std::string> Remarks() const { return {}; }
};

}  // namespace program
