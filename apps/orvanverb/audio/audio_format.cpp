#include "orvanverb/audio/audio_format.h"

#include <sndfile.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "orvanverb/common/part_file.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace {

struct ContainerRow {
    char const* name;  // in --format, and the end of a file's name
    char const* otherEnd;
    char const* description;
    int sndfileFormat;
    unsigned int maxChannels;
};

// RF64 stands for WAV: libsndfile turns it into plain RIFF at the end if it stayed short enough.
constexpr unsigned int anyChannels = 1024;
constexpr std::array<ContainerRow, 8> containers{{
    {"wav", "wave", "WAV", SF_FORMAT_RF64, anyChannels},
    {"flac", "flac", "FLAC", SF_FORMAT_FLAC, 8},
    {"aiff", "aif", "AIFF", SF_FORMAT_AIFF, anyChannels},
    {"ogg", "oga", "Ogg", SF_FORMAT_OGG, 255},
    {"w64", "w64", "W64", SF_FORMAT_W64, anyChannels},
    {"caf", "caf", "CAF", SF_FORMAT_CAF, anyChannels},
    {"au", "snd", "AU", SF_FORMAT_AU, anyChannels},
    {"raw", "raw", "raw samples", SF_FORMAT_RAW | SF_ENDIAN_LITTLE, anyChannels},
}};

struct SamplesRow {
    char const* name;
    char const* description;
    int sndfileFormat;
    std::size_t bytes;
};

constexpr std::array<SamplesRow, 4> samples{{
    {"pcm16", "16-bit", SF_FORMAT_PCM_16, 2},
    {"pcm24", "24-bit", SF_FORMAT_PCM_24, 3},
    {"float", "32-bit float", SF_FORMAT_FLOAT, 4},
    {nullptr, "Vorbis", SF_FORMAT_VORBIS, 0},  // comes with its container
}};

ContainerRow const& Row(Container container) {
    return containers[static_cast<std::size_t>(container)];
}

SamplesRow const& Row(SampleFormat format) {
    return samples[static_cast<std::size_t>(format)];
}

/// The end of a name in small letters, without its point.
std::string EndOf(std::string const& path) {
    std::string end = std::filesystem::path(path).extension().string();
    std::transform(end.begin(), end.end(), end.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter;
    });
    return end.empty() ? end : end.substr(1);
}

std::optional<Container> ContainerByEnd(std::string const& end) {
    for (std::size_t i = 0; i < containers.size(); ++i)
        if (end == containers[i].name || end == containers[i].otherEnd) return static_cast<Container>(i);
    return std::nullopt;
}

Container ContainerFor(FormatWish const& wish, std::string const& path) {
    if (!IsReplaceable(path)) return wish.container.value_or(Container::Au);
    const std::string end = EndOf(path);
    const std::optional<Container> named = ContainerByEnd(end);
    if (named && wish.container && *named != *wish.container)
        throw UsageError(std::string("--format ") + Row(*wish.container).name + ": contradicts the name " + path);
    if (named || wish.container || end.empty()) return named ? *named : wish.container.value_or(Container::Wav);
    std::string ends;
    for (ContainerRow const& row : containers) ends.append(" .").append(row.name);
    throw UsageError(path + ": no format that can be written has this name; there are" + ends +
                     ", or --format tells one");
}

SampleFormat UsualSamples(Container container) {
    if (container == Container::Ogg) return SampleFormat::Vorbis;
    return container == Container::Flac ? SampleFormat::Pcm24 : SampleFormat::Float;
}

}  // namespace

int AudioFormat::SndfileFormat() const {
    return Row(container).sndfileFormat | Row(samples).sndfileFormat;
}

unsigned int AudioFormat::MaxChannels() const {
    return Row(container).maxChannels;
}

std::size_t AudioFormat::BytesPerSample() const {
    return container == Container::Flac ? 0 : Row(samples).bytes;
}

std::string Describe(AudioFormat const& format) {
    if (format.container == Container::Ogg) return "Ogg Vorbis";
    return std::string(Row(format.samples).description) + " " + Row(format.container).description;
}

std::optional<FormatWish> ParseFormatWish(std::string_view name) {
    for (std::size_t i = 0; i < samples.size(); ++i)
        if (samples[i].name != nullptr && name == samples[i].name)
            return FormatWish{std::nullopt, static_cast<SampleFormat>(i)};
    for (std::size_t i = 0; i < containers.size(); ++i)
        if (name == containers[i].name) return FormatWish{static_cast<Container>(i), std::nullopt};
    return std::nullopt;
}

std::string FormatNames() {
    std::string names;
    for (SamplesRow const& row : samples)
        if (row.name != nullptr) names.append(names.empty() ? "" : ", ").append(row.name);
    for (ContainerRow const& row : containers) names.append(", ").append(row.name);
    return names;
}

AudioFormat ChooseFormat(FormatWish const& wish, std::string const& path) {
    AudioFormat format;
    format.container = ContainerFor(wish, path);
    format.samples = wish.samples.value_or(UsualSamples(format.container));
    SF_INFO info{};
    info.samplerate = 48000;
    info.channels = 1;
    info.format = format.SndfileFormat();
    if (sf_format_check(&info) == SF_FALSE)
        throw UsageError(std::string("--format ") + Row(format.samples).name + ": " +
                         Row(format.container).description + " files hold no such samples");
    if (IsPipe(path) && !format.GoesThroughPipes())
        throw UsageError(std::string("--format ") + Row(format.container).name +
                         ": can't go through a pipe, where nobody can go back to fill in a length; au and raw can");
    return format;
}

}  // namespace program
