#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "orvanverb/audio/rate_converter.h"
#include "orvanverb/audio/sound_file.h"

namespace program {

/// What an input's name that stands for standard input is.
constexpr char const* standardInputName = "-";

/// One recording as a stream of planar samples at a chosen rate. Memory does not grow with its length.
///
/// Samples that aren't finite, or so large that they overflow in a room, are replaced by 0 before anything else sees
/// them (one of them would spread through the rate conversion and stay in the room's feedback for ever), and counted.
class AudioInput {
public:
    /// Opens a WAV, AIFF, FLAC or Ogg file of any rate and channel count, or a pipe with WAV or AU: "-" is standard
    /// input.
    /// @throws WorkError for a file that is missing, empty, cut off or no audio
    explicit AudioInput(std::string path);

    std::string const& Path() const noexcept { return path; }
    unsigned int NumChannels() const noexcept { return static_cast<unsigned int>(info.channels); }
    int Samplerate() const noexcept { return info.samplerate; }  // of the file [Hz]

    /// Length at the file's own rate, or 0 if the file doesn't tell it.
    std::uint64_t NumFrames() const noexcept;
    double Seconds() const noexcept { return static_cast<double>(NumFrames()) / info.samplerate; }

    /// Sets the rate of what Read gives [Hz]; the file's own rate until then. Call it before the first Read.
    void SetOutputRate(int rate);

    /// Writes up to `frames` samples to each channel.
    /// @return frames written; fewer than asked only at the end
    /// @throws WorkError if the file ends before the length that it tells, or can't be read any more
    std::size_t Read(float* const* channels, std::size_t frames);

    /// Samples that were replaced, so far.
    std::uint64_t NumReplaced() const noexcept { return numReplaced; }

private:
    float* ReadPiece(std::size_t& frames);
    std::size_t Refill();

    std::string path;
    SF_INFO info{};
    SoundFile file;
    std::uint64_t framesRead = 0;
    std::uint64_t numReplaced = 0;
    std::unique_ptr<RateConverter> converter;  // null at the file's own rate
    std::vector<float> piece;                  // interleaved, as the file has it
    std::vector<float> converted;              // interleaved, at the output rate
    float const* pending = nullptr;            // interleaved samples that Read hasn't given yet
    std::size_t pendingFrames = 0;
};

}  // namespace program
