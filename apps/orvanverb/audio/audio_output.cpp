#include "orvanverb/audio/audio_output.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <stdexcept>

#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/audio/vector_channels.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace {

constexpr std::size_t pieceFrames = 4096;

/// Fails with the system's reason, or with the library's where there is none.
[[noreturn]] void Fail(PartFile const& part, char const* otherwise) {
    if (errno != 0) part.FailAsErrno();
    part.Fail(otherwise);
}

}  // namespace

AudioOutput::AudioOutput(std::string const& path, AudioFormat const& newFormat, int samplerate, unsigned int channels,
                         std::uint32_t newChannelMask)
    : part(path), format(newFormat), numChannels(channels), channelMask(newChannelMask) {
    RequireChannels(path, format, channels);
    SF_INFO info{};
    info.samplerate = samplerate;
    info.channels = static_cast<int>(channels);
    info.format = format.SndfileFormat();
    errno = 0;
    file.reset(sf_open_fd(dup(part.Descriptor()), SFM_WRITE, &info, SF_TRUE));
    if (!file) Fail(part, sf_strerror(nullptr));
    sf_command(file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    // The chunk of peaks has the time of day in it: two renderings are to be the same bytes. WAV has it in any case.
    sf_command(file.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

void AudioOutput::RequireChannels(std::string const& path, AudioFormat const& format, unsigned int channels) {
    if (channels > format.MaxChannels())
        throw UsageError(path + ": " + Describe(format) + " holds at most " + std::to_string(format.MaxChannels()) +
                         " channels, there are " + std::to_string(channels));
}

void AudioOutput::WriteInterleaved(std::span<float const> samples) {
    interleaved.insert(interleaved.end(), samples.begin(), samples.end());
    numFrames += samples.size() / numChannels;
    if (interleaved.size() >= pieceFrames * numChannels) Flush();
}

void AudioOutput::Write(float const* const* channels, std::size_t frames) {
    AppendInterleaved(interleaved, channels, numChannels, frames);
    numFrames += frames;
    if (interleaved.size() >= pieceFrames * numChannels) Flush();
}

void AudioOutput::Flush() {
    if (format.samples != SampleFormat::Float)
        for (const float sample : interleaved) numClipped += std::abs(sample) > 1.0f ? 1 : 0;
    const auto count = static_cast<sf_count_t>(interleaved.size());
    errno = 0;
    if (sf_write_float(file.get(), interleaved.data(), count) != count) Fail(part, sf_strerror(file.get()));
    interleaved.clear();
}

void AudioOutput::Commit() {
    Flush();
    errno = 0;
    if (const int error = sf_close(file.release())) Fail(part, sf_error_number(error));
    if (format.container == Container::Wav && !part.PartPath().empty()) {
        try {
            SetChannelMask(part.PartPath(), channelMask);
            ClearPeakTime(part.PartPath());
        } catch (std::runtime_error const& error) {
            part.Fail(error.what());
        }
    }
    part.Commit();
}

}  // namespace program
