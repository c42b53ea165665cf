#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "hrtf/hrtf.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "room/room.h"
#include "support/frequency_response.h"

namespace {

// What they are is pinned bit by bit by the golden hashes, and judged against the measurements by
// tools/hrtf/check_kemar.py.

TEST(BuiltinEars, AreThoseOfTheNearestRate) {
    const struct {
        float rate;
        unsigned int madeFor;
    } cases[] = {{8000.0f, 44100},    {32000.0f, 44100},   {45000.0f, 44100}, {47000.0f, 48000},
                 {50000.0f, 48000},   {64000.0f, 48000},   {66000.0f, 88200}, {128000.0f, 96000},
                 {131000.0f, 176400}, {384000.0f, 192000}, {0.0f, 44100},     {std::nanf(""), 44100}};
    for (auto const& expected : cases)
        EXPECT_EQ(Lume::Hrtf::Builtin(expected.rate).GetSamplingRate(), expected.madeFor) << expected.rate;
}

// Red if a room keeps the ears of another rate.
TEST(BuiltinEars, FollowTheRateOfARoom) {
    Lume::Room room(1, 2);
    for (const float rate : {48000.0f, 192000.0f, 44100.0f, 96000.0f}) {
        room.Configure(rate, 64);
        EXPECT_EQ(static_cast<float>(room.EarsInfos()->samplingRate), rate);
        EXPECT_EQ(room.EarsRemark(), "");
    }
}

// The front ends: 10 kHz straight ahead, where ears for 44.1 kHz are 6 to 16 dB off at other rates, is the same at all.
TEST(BuiltinEars, FollowTheRateOfTheInput) {
    const TemporaryDirectory directory;
    for (char const* const front : {"render", "pan"}) {
        double first = 0.0;
        for (const int rate : {44100, 48000, 96000, 192000}) {
            const std::string in = directory / "in.wav", out = directory / "out.wav";
            std::vector<float> click(static_cast<std::size_t>(rate) / 10, 0.0f);
            click[static_cast<std::size_t>(rate) / 100] = 1.0f;
            WriteSound(in, {{click}, rate});
            std::vector<std::string> words{front, in, "-o", out, "--format", "float"};
            const std::vector<std::string> more = std::string(front) == "pan"
                                                      ? std::vector<std::string>{"--method", "binaural"}
                                                      : std::vector<std::string>{"--tail", "0"};
            words.insert(words.end(), more.begin(), more.end());
            // The direct sound alone.
            if (std::string(front) == "render")
                for (char const* const layer : {"@early", "@cluster", "@room"})
                    for (char const* const word : {layer, "-60", "0", "0", "0", "177", "5657"}) words.push_back(word);
            RunWell(words);
            const double level = GainDbAt(ReadSound(out).samples[0], 10000.0 / rate);
            if (rate == 44100) first = level;
            EXPECT_NEAR(level, first, 1.5) << front << " " << rate;
        }
    }
}

}  // namespace
