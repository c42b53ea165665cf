#include "orvanverb/audio/audio_input.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <limits>

#include "orvanverb/audio/input_bank.h"
#include "orvanverb/common/program_error.h"
#include "program/sound_files.h"

namespace {

using program::AudioInput;

std::vector<float> ReadAll(AudioInput& input, std::size_t frames) {
    std::vector<float> all, piece(frames);
    std::array<float*, 1> channel{piece.data()};
    for (std::size_t got = frames; got == frames;) {
        got = input.Read(channel.data(), frames);
        all.insert(all.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(got));
    }
    return all;
}

// Red if the conversion shifts, loses its end, filters the wrong way, or depends on how it is read; or if what isn't
// finite is replaced behind it, which would spread it over its whole window.
TEST(AudioInput, ConvertsTheRateAndKeepsPhaseAndLength) {
    const TemporaryDirectory directory;
    for (const auto& [from, to] : {std::pair{44100, 48000}, {48000, 44100}, {96000, 48000}, {8000, 48000}}) {
        Sound tone = MakeTone(1000.0, 1.0, from);
        tone.samples[0][100] = std::numeric_limits<float>::infinity();
        WriteSound(directory / "tone.wav", tone);
        AudioInput input(directory / "tone.wav");
        input.SetOutputRate(to);
        const std::vector<float> converted = ReadAll(input, 777);
        EXPECT_NEAR(static_cast<double>(converted.size()), to, 1.0) << from << " to " << to;

        const Sound ideal = MakeTone(1000.0, 1.0, to);
        float worst = 0.0f;
        for (std::size_t i = 4000; i < converted.size() - 4000; ++i)
            worst = std::max(worst, std::abs(converted[i] - ideal.samples[0][i]));
        EXPECT_LT(worst, 1e-5f) << from << " to " << to;  // -94 dB relative to the tone
        EXPECT_EQ(input.NumReplaced(), 1u);
        for (const float sample : converted) ASSERT_LT(std::abs(sample), 1.0f);
    }
}

std::string Complaint(std::string const& path) {
    try {
        AudioInput input(path);
        std::vector<float> samples(2 * 4096);
        std::array<float*, 2> channels{samples.data(), samples.data() + 4096};
        while (input.Read(channels.data(), 4096) > 0) {
        }
    } catch (program::WorkError const& error) {
        return error.what();
    }
    return {};
}

// Red if half a recording passes as a whole one, or a whole one as half.
TEST(AudioInput, TellsWholeFilesFromCutOnes) {
    const TemporaryDirectory directory;
    Sound sound = MakeTone(440.0, 1.0, 44100);
    sound.samples.push_back(sound.samples[0]);
    for (const int format : {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAVEX | SF_FORMAT_PCM_24,
                             SF_FORMAT_RF64 | SF_FORMAT_FLOAT, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                             SF_FORMAT_WAV | SF_FORMAT_PCM_16 | SF_ENDIAN_BIG, SF_FORMAT_FLAC | SF_FORMAT_PCM_16}) {
        const std::string path = directory / "sound";
        WriteSound(path, sound, format);
        EXPECT_EQ(Complaint(path), "") << std::hex << format;
        std::filesystem::resize_file(path, std::filesystem::file_size(path) * 2 / 3);
        EXPECT_NE(Complaint(path).find("is cut off"), std::string::npos) << std::hex << format << Complaint(path);
    }
    WriteSound(directory / "sound.ogg", sound, SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    EXPECT_EQ(Complaint(directory / "sound.ogg"), "");
    // Damaged in each of its pages of sound, which readers then leave out.
    std::string pages = ReadText(directory / "sound.ogg");
    for (std::size_t page = pages.find("OggS", 4000); page != std::string::npos; page = pages.find("OggS", page + 4))
        pages[page + 100] = static_cast<char>(pages[page + 100] + 1);
    WriteText(directory / "sound.ogg", pages);
    EXPECT_NE(Complaint(directory / "sound.ogg").find("yields no samples"), std::string::npos);

    // A recorder that wrote through a pipe could not come back to fill in the lengths.
    WriteSound(directory / "pipe.wav", sound, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::string bytes = ReadText(directory / "pipe.wav");
    for (const std::string length : {"\xFF\xFF\xFF\xFF", "\xD3\xFF\xFF\x7F"}) {
        bytes.replace(bytes.find("data") + 4, 4, length);
        WriteText(directory / "pipe.wav", bytes);
        EXPECT_EQ(Complaint(directory / "pipe.wav"), "");
    }
}

// Red if channels of several files meet, if a pause is counted twice, or if turns overlap at a vector's border.
TEST(InputBank, PlacesRecordingsSideBySideOrOneAfterTheOther) {
    const TemporaryDirectory directory;
    const auto constant = [](std::vector<float> const& levels, std::size_t frames) {
        Sound sound;
        for (const float level : levels) sound.samples.emplace_back(frames, level);
        sound.samplerate = 8000;
        return sound;
    };
    WriteSound(directory / "a.wav", constant({0.1f, 0.2f}, 100));
    WriteSound(directory / "b.wav", constant({0.3f}, 250));
    for (const bool inTurn : {false, true}) {
        program::InputBank bank({directory / "a.wav", directory / "b.wav"}, std::nullopt,
                                inTurn ? std::optional(0.01) : std::nullopt);
        ASSERT_EQ(bank.NumChannels(), 3u);
        std::vector<std::vector<float>> all(3);
        std::vector<float> memory(3 * 64);
        std::array<float*, 3> channels{memory.data(), memory.data() + 64, memory.data() + 128};
        std::size_t length = 0;
        for (std::size_t got = 64; got == 64; length += got) {
            got = bank.Read(channels.data(), 64);
            for (std::size_t c = 0; c < 3; ++c) all[c].insert(all[c].end(), channels[c], channels[c] + 64);
        }
        const std::size_t begin = inTurn ? 180 : 0;  // 100 frames and a pause of 80
        EXPECT_EQ(length, begin + 250);
        EXPECT_EQ(bank.ExpectedFrames(), static_cast<double>(begin + 250));
        for (std::size_t i = 0; i < all[0].size(); ++i) {
            EXPECT_EQ(all[0][i], i < 100 ? 0.1f : 0.0f) << i;
            EXPECT_EQ(all[1][i], i < 100 ? 0.2f : 0.0f) << i;
            EXPECT_EQ(all[2][i], i >= begin && i < begin + 250 ? 0.3f : 0.0f) << i;
        }
    }
}

}  // namespace
