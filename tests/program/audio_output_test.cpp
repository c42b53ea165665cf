#include "orvanverb/audio/audio_output.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "orvanverb/common/program_error.h"
#include "program/sound_files.h"

namespace {

using program::AudioFormat;
using program::AudioOutput;
using program::Container;
using program::SampleFormat;

void WriteAll(AudioOutput& output, Sound const& sound) {
    std::vector<float const*> channels;
    for (std::vector<float> const& channel : sound.samples) channels.push_back(channel.data());
    output.Write(channels.data(), sound.NumFrames());
}

// Red if a format loses precision, wraps around instead of clipping, or forgets to tell that it clipped.
TEST(AudioOutput, KeepsSamplesToThePrecisionOfItsFormat) {
    const TemporaryDirectory directory;
    const Sound sound{{{0.0f, 0.25f, -0.333f, 1e-4f, 1.5f}, {0.5f, -1.0f, 0.1f, 0.9f, -2.0f}}, 44100};
    const struct {
        AudioFormat format;
        float precision;
        std::uint64_t clipped;
        int type;
    } cases[] = {{{Container::Wav, SampleFormat::Float}, 0.0f, 0, SF_FORMAT_WAVEX | SF_FORMAT_FLOAT},
                 {{Container::Wav, SampleFormat::Pcm24}, 2e-7f, 2, SF_FORMAT_WAVEX | SF_FORMAT_PCM_24},
                 {{Container::Wav, SampleFormat::Pcm16}, 5e-5f, 2, SF_FORMAT_WAVEX | SF_FORMAT_PCM_16},
                 {{Container::Flac, SampleFormat::Pcm24}, 2e-7f, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
                 {{Container::Flac, SampleFormat::Pcm16}, 5e-5f, 2, SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                 {{Container::Aiff, SampleFormat::Float}, 0.0f, 0, SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
                 {{Container::W64, SampleFormat::Float}, 0.0f, 0, SF_FORMAT_W64 | SF_FORMAT_FLOAT},
                 {{Container::Caf, SampleFormat::Pcm24}, 2e-7f, 2, SF_FORMAT_CAF | SF_FORMAT_PCM_24},
                 {{Container::Au, SampleFormat::Float}, 0.0f, 0, SF_FORMAT_AU | SF_FORMAT_FLOAT}};
    for (const auto& expected : cases) {
        AudioOutput output(directory / "out", expected.format, 44100, 2, 0);
        WriteAll(output, sound);
        output.Commit();
        EXPECT_EQ(output.NumClipped(), expected.clipped);

        const Sound back = ReadSound(directory / "out");
        EXPECT_EQ(back.format, expected.type) << program::Describe(expected.format);
        EXPECT_EQ(back.samplerate, 44100);
        ASSERT_EQ(back.NumFrames(), 5u);
        for (std::size_t c = 0; c < 2; ++c)
            for (std::size_t i = 0; i < 5; ++i) {
                const float wanted =
                    expected.clipped > 0 ? std::clamp(sound.samples[c][i], -1.0f, 1.0f) : sound.samples[c][i];
                EXPECT_NEAR(back.samples[c][i], wanted, expected.precision) << c << " " << i;
            }
    }
    EXPECT_THROW(AudioOutput(directory / "many", {Container::Flac, SampleFormat::Pcm24}, 44100, 9, 0),
                 program::UsageError);
}

// Red if a failed rendering destroys the file of the last one, leaves its pieces about, or replaces a link.
TEST(AudioOutput, GivesTheNameOnlyToAWholeFile) {
    const TemporaryDirectory directory;
    const Sound sound = MakeTone(440.0, 0.5, 48000);
    WriteText(directory / "old", "what was there");
    std::filesystem::create_symlink(directory / "old", directory / "link");
    {
        AudioOutput output(directory / "link", AudioFormat(), 48000, 1, 0);
        WriteAll(output, sound);
    }
    EXPECT_EQ(ReadText(directory / "old"), "what was there");
    EXPECT_EQ(directory.NumFiles(), 2u);

    AudioOutput output(directory / "link", AudioFormat(), 48000, 1, 0);
    WriteAll(output, sound);
    output.Commit();
    EXPECT_TRUE(std::filesystem::is_symlink(directory / "link"));
    EXPECT_EQ(ReadSound(directory / "old").samples, sound.samples);
    EXPECT_EQ(directory.NumFiles(), 2u);
}

// Players route by the mask.
TEST(AudioOutput, WritesPlainRiffWithItsMask) {
    const TemporaryDirectory directory;
    AudioOutput output(directory / "out.wav", AudioFormat(), 48000, 2, 3);
    WriteAll(output, {{{0.1f}, {0.2f}}, 48000});
    output.Commit();
    EXPECT_EQ(ReadText(directory / "out.wav").substr(0, 4), "RIFF");
    EXPECT_EQ(ReadChannelMask(directory / "out.wav"), 3u);
}

}  // namespace
