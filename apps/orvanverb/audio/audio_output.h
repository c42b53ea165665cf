#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "orvanverb/audio/audio_format.h"
#include "orvanverb/audio/sound_file.h"
#include "orvanverb/common/part_file.h"

namespace program {

/// Writes a rendering as it comes, as a PartFile: what stands under the final name is whole.
///
/// WAV files past 4 GiB become RF64, shorter ones stay plain RIFF.
class AudioOutput {
public:
    /// @param channelMask  ChannelMask of the loudspeakers, or 0 for such without a name. FLAC has no mask: players
    /// take
    ///                     its channels for a standard layout
    /// @throws UsageError for more channels than the format holds, WorkError for an output that can't be written
    AudioOutput(std::string const& path, AudioFormat const& format, int samplerate, unsigned int channels,
                std::uint32_t channelMask);

    /// @throws UsageError for more channels than a format holds
    static void RequireChannels(std::string const& path, AudioFormat const& format, unsigned int channels);

    /// Appends planar samples. They reach the file in larger pieces.
    /// @throws WorkError when the disk is full or the like
    void Write(float const* const* channels, std::size_t frames);
    /// The same for interleaved ones.
    void WriteInterleaved(std::span<float const> samples);

    /// Ends the file and gives it its name.
    void Commit();

    std::uint64_t NumFrames() const noexcept { return numFrames; }

    /// Samples beyond full scale that the format had to clip.
    std::uint64_t NumClipped() const noexcept { return numClipped; }

private:
    void Flush();

    PartFile part;
    AudioFormat format;
    unsigned int numChannels;
    std::uint32_t channelMask;
    SoundFile file;
    std::vector<float> interleaved;  // what waits to be written
    std::uint64_t numFrames = 0;
    std::uint64_t numClipped = 0;
};

}  // namespace program
