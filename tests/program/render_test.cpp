#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <numeric>
#include <thread>

#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/decay.h"

namespace {

// The built-in rooms answer after 22 ms: up to there a rendered impulse holds the direct sound alone.
constexpr std::size_t directFrames = 1000;  // at 48 kHz

/// Energy of each channel within a piece of a sound.
std::vector<double> Energies(Sound const& sound, std::size_t begin, std::size_t end) {
    std::vector<double> energies;
    for (std::vector<float> const& channel : sound.samples) {
        double energy = 0.0;
        for (std::size_t i = begin; i < std::min(end, channel.size()); ++i)
            energy += static_cast<double>(channel[i]) * static_cast<double>(channel[i]);
        energies.push_back(energy);
    }
    return energies;
}

double Sum(std::vector<double> const& values) {
    return std::accumulate(values.begin(), values.end(), 0.0);
}

class Rendering : public testing::Test {
protected:
    /// The impulse response of a room with one source.
    Sound ImpulseResponse(std::string const& speakers, std::string const& azimuth, std::string const& distance = "1",
                          std::vector<std::string> const& more = {}) {
        std::vector<std::string> arguments{
            "ir",     "-o", directory / "ir.wav", "--speakers", speakers, "--source", "1", azimuth, "0", distance,
            "--tail", "0.5"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const RunResult run = RunProgram(arguments);
        EXPECT_EQ(run.status, 0) << run.err;
        return ReadSound(directory / "ir.wav");
    }

    TemporaryDirectory directory;
};

constexpr double directPower = 1.0 / 8.0;  // one source among eight internal channels: sqrt(1/8) in amplitude

// Red if a channel is swapped, a ring is mirrored, or a neighbour leaks.
TEST_F(Rendering, SourceAtALoudspeakerComesOutOfItAlone) {
    const std::pair<char const*, std::vector<char const*>> rings[] = {
        {"4", {"-45", "45", "135", "-135"}},
        {"5", {"-30", "30", "0", "-110", "110"}},  // files of this layout go by pairs
        {"6", {"-45", "45", "90", "135", "-135", "-90"}},
        {"9", {"0", "40", "80", "120", "160", "200", "240", "280", "-40"}},
    };
    for (const auto& [count, azimuths] : rings)
        for (std::size_t c = 0; c < azimuths.size(); ++c) {
            const std::vector<double> energies = Energies(ImpulseResponse(count, azimuths[c]), 0, directFrames);
            ASSERT_EQ(energies.size(), azimuths.size());
            EXPECT_NEAR(energies[c], directPower, 1e-5) << count << " " << azimuths[c];
            EXPECT_LT(Sum(energies) - energies[c], 1e-9) << count << " " << azimuths[c];
        }
}

TEST_F(Rendering, SourceBetweenLoudspeakersKeepsItsPowerAndItsSide) {
    WriteText(directory / "uneven", "-50\n-10\n35\n100 0 1.5\n170\n-120\n");
    for (std::string const& speakers : {std::string("6"), directory / "uneven"})
        for (char const* azimuth : {"-170", "-100", "-63", "-20", "5", "60", "111", "179"}) {
            const std::vector<double> energies = Energies(ImpulseResponse(speakers, azimuth), 0, directFrames);
            EXPECT_NEAR(Sum(energies), directPower, 1e-5) << speakers << " " << azimuth;
            EXPECT_LE(std::count_if(energies.begin(), energies.end(), [](double energy) { return energy > 1e-9; }), 2);
        }
    // Front left is channel 1 of four and of eight, and at -63 degrees it shares with the left of eight alone.
    EXPECT_GT(Energies(ImpulseResponse("4", "-45"), 0, directFrames)[0], 0.12);
    const std::vector<double> left = Energies(ImpulseResponse("8", "-63"), 0, directFrames);
    EXPECT_GT(left[0], left[7]);
    EXPECT_NEAR(left[0] + left[7], directPower, 1e-5);
}

// Red if the ears are swapped: to the left of the listener is the first channel, the left one.
TEST_F(Rendering, HeadphonesHearTheSide) {
    for (char const* side : {"-45", "45"}) {
        const Sound sound = ImpulseResponse("2", side);
        const std::vector<double> ears = Energies(sound, 0, directFrames);
        ASSERT_EQ(ears.size(), 2u);
        EXPECT_GT(ears[side[0] == '-' ? 0 : 1], 4.0 * ears[side[0] == '-' ? 1 : 0]) << side;
    }
}

// Red if --hrtf isn't read, or read into a room that isn't for headphones. A gain of a quarter in all rows tells.
TEST_F(Rendering, HeadphonesTakeAnotherSet) {
    std::string rows;
    for (int row = 1; row <= 710; ++row) {
        rows += std::to_string(row) + ", 1 0.25";
        for (int value = 0; value < 24; ++value) rows += " 0";
        rows += ";\n";
    }
    const std::string set = directory / "flat-ears-48000.coll";
    WriteText(set, rows);
    const std::vector<std::string> dry = {"--set", "room=-60 0 0 0 250 4000", "--hrtf", set};
    const std::vector<double> ears = Energies(ImpulseResponse("2", "-90", "1", dry), 0, directFrames);
    EXPECT_NEAR(ears[0], ears[1], 1e-6);
    EXPECT_NEAR(ears[0], 0.5 * 0.25 * 0.25 * directPower, 1e-3 * directPower);

    const RunResult run = RunProgram({"ir", "-o", directory / "ring.wav", "--speakers", "4", "--hrtf", set});
    EXPECT_EQ(run.status, 2);
    EXPECT_NE(run.err.find("--hrtf"), std::string::npos) << run.err;
}

// Red if the first millisecond is still fading in, or if one of the two laws is taken for the other.
TEST_F(Rendering, DirectSoundFallsWithTheSquareOfTheDistanceAndTheRoomWithTheDistance) {
    const Sound near = ImpulseResponse("6", "45", "1");
    const double nearRoom = Sum(Energies(near, directFrames, near.NumFrames()));
    for (const double distance : {0.3, 2.0, 5.0, 40.0, 100.0, 300.0}) {
        const double counted = std::min(distance, 100.0);
        const Sound sound = ImpulseResponse("6", "45", std::to_string(distance));
        EXPECT_NEAR(static_cast<double>(sound.samples[1][0]) * counted * counted, std::sqrt(directPower), 1e-4);
        EXPECT_NEAR(Sum(Energies(sound, directFrames, sound.NumFrames())) * counted * counted / nearRoom, 1.0, 1e-3)
            << distance;
    }
}

// Red if --set or a preset doesn't reach the room, or the preset wins over --set.
TEST_F(Rendering, DecaysAsAsked) {
    WriteText(directory / "room", "tr0 3\ntrh 1\nearly 0 -30 -30 -30 177 5657\n");
    for (const double seconds : {0.6, 1.5}) {
        const Sound sound = ImpulseResponse(
            "6", "0", "1",
            {"--preset", directory / "room", "--tail", "auto", "--set", "tr0=" + std::to_string(seconds)});
        std::vector<std::vector<float>> late;
        for (std::vector<float> const& channel : sound.samples)
            late.emplace_back(channel.begin() + 14400, channel.end());  // behind 0.3 s the late field is alone
        EXPECT_NEAR(MeasureDecay(late, 48000.0, 1000.0) / seconds, 1.0, 0.05);
    }
}

TEST_F(Rendering, TakesManyFilesOfDifferentKindsAndRates) {
    Sound stereo = MakeTone(500.0, 0.25, 44100);
    stereo.samples.push_back(stereo.samples[0]);
    WriteSound(directory / "a.aiff", stereo, SF_FORMAT_AIFF | SF_FORMAT_PCM_24);
    WriteSound(directory / "b.flac", MakeTone(700.0, 0.5, 48000), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    WriteSound(directory / "c.ogg", MakeTone(900.0, 0.125, 32000), SF_FORMAT_OGG | SF_FORMAT_VORBIS);
    const RunResult run =
        RunProgram({"render", directory / "a.aiff", directory / "b.flac", directory / "c.ogg", "-o",
                    directory / "out.wav", "--tail", "0.25", "--source", "4", "-90", "0", "3", "--speakers", "7"});
    ASSERT_EQ(run.status, 0) << run.err;
    const Sound out = ReadSound(directory / "out.wav");
    EXPECT_EQ(out.samplerate, 44100);  // that of the first
    EXPECT_EQ(out.samples.size(), 7u);
    EXPECT_NEAR(static_cast<double>(out.NumFrames()), 0.75 * 44100.0, 1.0);
    EXPECT_EQ(ReadChannelMask(directory / "out.wav"), 0x637u);
    for (std::string const& word : {std::string("out.wav: 7 channels"), std::string("0.750 s"), std::string("peak"),
                                    std::string("times faster than real time")})
        EXPECT_NE(run.err.find(word), std::string::npos) << run.err;
    EXPECT_EQ(run.err.find('\r'), std::string::npos) << "a progress line in a pipe";

    const std::pair<char const*, unsigned int> masks[] = {{"2", 3u}, {"5", 0x607u}, {"6", 0u}, {"8", 0u}};
    for (const auto& [speakers, mask] : masks) {
        ImpulseResponse(speakers, "0");
        EXPECT_EQ(ReadChannelMask(directory / "ir.wav"), mask) << speakers;
    }
}

// Red if something random, or the time of day, gets into the file; 16 internal channels spread their gains by chance.
TEST_F(Rendering, GivesTheSameBytesTwice) {
    ImpulseResponse("8", "20", "2", {"--set", "numinternals=16"});
    const std::string first = ReadText(directory / "ir.wav");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // into another second of the clock
    ImpulseResponse("8", "20", "2", {"--set", "numinternals=16"});
    EXPECT_TRUE(first == ReadText(directory / "ir.wav"));
}

TEST_F(Rendering, KeepsWhatIsNotFiniteOutOfTheRoomAndTellsOnce) {
    Sound sound = MakeTone(440.0, 0.2, 48000);
    for (const std::size_t i : {1000u, 2000u, 2001u}) sound.samples[0][i] = std::numeric_limits<float>::quiet_NaN();
    WriteSound(directory / "in.wav", sound);
    const RunResult run = RunProgram({"render", directory / "in.wav", "-o", directory / "out.wav"});
    ASSERT_EQ(run.status, 0);
    EXPECT_NE(run.err.find("in.wav: 3 samples"), std::string::npos) << run.err;
    for (std::vector<float> const& channel : ReadSound(directory / "out.wav").samples)
        for (const float sample : channel) ASSERT_TRUE(std::isfinite(sample));
}

// Red if anything is kept for the length of the input: two minutes of it are 23 MB, what comes out is 138 MB.
TEST_F(Rendering, MemoryDoesNotGrowWithTheInput) {
    long memoryKb[2] = {};
    for (int i = 0; i < 2; ++i) {
        WriteSound(directory / "in.wav", MakeTone(440.0, 2.0, 48000), SF_FORMAT_WAV | SF_FORMAT_FLOAT, i == 0 ? 1 : 60);
        const RunResult run = RunProgram({"render", directory / "in.wav", "-o", directory / "out.wav", "--tail", "0"});
        ASSERT_EQ(run.status, 0) << run.err;
        memoryKb[i] = run.peakMemoryKb;
    }
    EXPECT_LT(memoryKb[1] - memoryKb[0], 4000);
}

}  // namespace
