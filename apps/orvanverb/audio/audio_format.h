#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace program {

/// What a file of sound is on the outside. Raw samples have no header: they stand for themselves, little-endian.
enum class Container : int { Wav, Flac, Aiff, Ogg, W64, Caf, Au, Raw };

/// How samples are stored. Float never clips; the others clip at full scale.
enum class SampleFormat : int { Pcm16, Pcm24, Float, Vorbis };

struct AudioFormat {
    Container container = Container::Wav;
    SampleFormat samples = SampleFormat::Float;

    /// For libsndfile.
    int SndfileFormat() const;
    /// The most channels that it holds.
    unsigned int MaxChannels() const;
    /// What a sample takes; 0 where that is not known before.
    std::size_t BytesPerSample() const;
    /// Whether it can be written where nobody can go back to fill in a length.
    bool GoesThroughPipes() const { return container == Container::Au || container == Container::Raw; }
};

/// For people: "32-bit float WAV".
std::string Describe(AudioFormat const& format);

/// What a user asked for: either part, or none.
struct FormatWish {
    std::optional<Container> container;
    std::optional<SampleFormat> samples;
};

/// A word of --format: pcm16, pcm24, float, or a container's name. Nothing for another one.
std::optional<FormatWish> ParseFormatWish(std::string_view name);

/// These words, with commas.
std::string FormatNames();

/// The format in which a file is written: the end of its name tells, or the wish where the name has none. What goes
/// into a pipe has no name, and is AU if nobody says otherwise.
/// @param path  "-" is standard output
/// @throws UsageError if name and wish contradict each other, or no format fits
AudioFormat ChooseFormat(FormatWish const& wish, std::string const& path);

}  // namespace program
