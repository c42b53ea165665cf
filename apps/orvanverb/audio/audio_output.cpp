#include "orvanverb/audio/audio_output.h"

#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <stdexcept>
#include <system_error>

#include "orvanverb/audio/channel_mask.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace {

struct FormatRow {
    SampleFormat format;
    char const* name;
    char const* description;
    int sndfileFormat;
};

// RF64 stands for WAV: libsndfile turns it into plain RIFF at the end if it stayed short enough.
constexpr FormatRow formats[] = {
    {SampleFormat::Pcm16, "pcm16", "16-bit WAV", SF_FORMAT_RF64 | SF_FORMAT_PCM_16},
    {SampleFormat::Pcm24, "pcm24", "24-bit WAV", SF_FORMAT_RF64 | SF_FORMAT_PCM_24},
    {SampleFormat::Float, "float", "32-bit float WAV", SF_FORMAT_RF64 | SF_FORMAT_FLOAT},
    {SampleFormat::Flac, "flac", "24-bit FLAC", SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
};
constexpr unsigned int maxFlacChannels = 8;
constexpr std::size_t pieceFrames = 4096;

FormatRow const& Row(SampleFormat format) {
    return formats[static_cast<std::size_t>(format)];
}

std::string SystemMessage() {
    return std::generic_category().message(errno);
}

}  // namespace

std::optional<SampleFormat> ParseSampleFormat(std::string_view name) {
    for (FormatRow const& row : formats)
        if (name == row.name) return row.format;
    return std::nullopt;
}

char const* Describe(SampleFormat format) {
    return Row(format).description;
}

AudioOutput::AudioOutput(std::string const& path, SampleFormat newFormat, int samplerate, unsigned int channels,
                         std::uint32_t newChannelMask)
    : part(path), format(newFormat), numChannels(channels), channelMask(newChannelMask) {
    if (format == SampleFormat::Flac && channels > maxFlacChannels)
        throw UsageError("--format flac: holds at most " + std::to_string(maxFlacChannels) + " channels, there are " +
                         std::to_string(channels));
    SF_INFO info{};
    info.samplerate = samplerate;
    info.channels = static_cast<int>(channels);
    info.format = Row(format).sndfileFormat;
    file.reset(sf_open_fd(dup(part.Descriptor()), SFM_WRITE, &info, SF_TRUE));
    if (!file) part.Fail(sf_strerror(nullptr));
    sf_command(file.get(), SFC_RF64_AUTO_DOWNGRADE, nullptr, SF_TRUE);
    sf_command(file.get(), SFC_SET_CLIPPING, nullptr, SF_TRUE);
}

void AudioOutput::Write(float const* const* channels, std::size_t frames) {
    const std::size_t begin = interleaved.size();
    interleaved.resize(begin + frames * numChannels);
    for (std::size_t c = 0; c < numChannels; ++c)
        for (std::size_t i = 0; i < frames; ++i) interleaved[begin + i * numChannels + c] = channels[c][i];
    numFrames += frames;
    if (interleaved.size() >= pieceFrames * numChannels) Flush();
}

void AudioOutput::Flush() {
    if (format != SampleFormat::Float)
        for (const float sample : interleaved) numClipped += std::abs(sample) > 1.0f ? 1 : 0;
    const auto count = static_cast<sf_count_t>(interleaved.size());
    errno = 0;
    if (sf_write_float(file.get(), interleaved.data(), count) != count)
        part.Fail(errno != 0 ? SystemMessage() : sf_strerror(file.get()));
    interleaved.clear();
}

void AudioOutput::Commit() {
    Flush();
    errno = 0;
    if (const int error = sf_close(file.release())) part.Fail(errno != 0 ? SystemMessage() : sf_error_number(error));
    if (format != SampleFormat::Flac) {
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
