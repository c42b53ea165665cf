#include <gtest/gtest.h>
#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <memory>
#include <numbers>
#include <span>
#include <vector>

#include "hrtf/hrtf.h"
#include "hrtf/hrtf_filtering.h"
#include "orvanverb/design/erb_axis.h"
#include "orvanverb/design/section_cascade.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "room/room.h"
#include "support/frequency_response.h"

namespace {

using program::Decibels;

constexpr unsigned int numDirections = 710;

/// The head that was measured, its left ear: levels in bands of one ERB, without what all directions have in common.
class MeasuredHead {
public:
    MeasuredHead() {
        int error = 0;
        const std::unique_ptr<MYSOFA_HRTF, Free> sofa(
            mysofa_load("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", &error));
        // Each direction stands for its part of the ring it lies on, 5 degrees to both sides.
        std::map<long, int> ringSizes;
        const auto elevation = [&](unsigned int row) {
            return static_cast<double>(sofa->SourcePosition.values[3 * row + 1]);
        };
        for (unsigned int row = 0; row < numDirections; ++row) ++ringSizes[std::lround(elevation(row))];
        std::vector<double> diffuse(axis.NumPoints(), 0.0);
        std::vector<std::vector<double>> levels;
        double weights = 0.0;
        for (unsigned int row = 0; row < numDirections; ++row) {
            std::vector<double>& level = levels.emplace_back(
                PowerOf({sofa->DataIR.values + 2 * std::size_t{row} * sofa->N, std::size_t{sofa->N}}));
            const double weight = (SinDeg(std::min(90.0, elevation(row) + 5.0)) - SinDeg(elevation(row) - 5.0)) /
                                  ringSizes[std::lround(elevation(row))];
            for (std::size_t i = 0; i < level.size(); ++i) diffuse[i] += weight * level[i];
            weights += weight;
        }
        for (std::vector<double>& level : levels) {
            for (std::size_t i = 0; i < level.size(); ++i) level[i] = Decibels(level[i] * weights / diffuse[i]);
            bands.push_back(axis.BandLevels(level));
        }
    }

    const program::ErbAxis axis{44100.0};
    std::vector<std::vector<double>> bands;  // directions x bands

private:
    struct Free {
        void operator()(MYSOFA_HRTF* set) const { mysofa_free(set); }
    };

    static double SinDeg(double degrees) { return std::sin(degrees * std::numbers::pi / 180.0); }

    std::vector<double> PowerOf(std::span<float const> response) const {
        std::vector<double> power;
        for (const double hertz : axis.Frequencies()) power.push_back(std::norm(ResponseAt(response, hertz / 44100.0)));
        return power;
    }
};

/// Whether both roots of 1 + c1 z^-1 + c2 z^-2 lie within a radius.
bool LiesWithin(float c1, float c2, float radius) {
    const float c2Scaled = c2 / (radius * radius);
    return std::abs(c2Scaled) < 1.0f && std::abs(c1 / radius) < 1.0f + c2Scaled;
}

// Red if a set is of another rate than it says, or coarser than it can be: what it may be off is what the first set is.
TEST(BuiltinEars, AreTheMeasuredHeadAtEveryRate) {
    const MeasuredHead head;
    const Lume::Hrtf first("");
    for (const float rate : {44100.0f, 48000.0f, 88200.0f, 96000.0f, 176400.0f, 192000.0f}) {
        SCOPED_TRACE(rate);
        const Lume::Hrtf set = Lume::Hrtf::Builtin(rate);
        ASSERT_EQ(static_cast<float>(set.GetSamplingRate()), rate);
        ASSERT_EQ(set.GetNumPoints(), numDirections);
        double sum = 0.0, delays = 0.0;
        std::vector<double> differences;
        for (unsigned int row = 0; row < numDirections; ++row) {
            Lume::HrtfPoint const& point = set.GetHrtfPoint(row);
            const std::span<float const> sections = Lume::EarCoefficients(point, 0);
            std::vector<double> made;
            for (const double hertz : head.axis.Frequencies())
                made.push_back(
                    Decibels(std::norm(program::ResponseOfSections(sections, hertz, static_cast<double>(rate)))));
            const std::vector<double> bands = head.axis.BandLevels(made);
            double squares = 0.0;
            for (std::size_t b = 0; b < bands.size(); ++b)
                squares += (bands[b] - head.bands[row][b]) * (bands[b] - head.bands[row][b]);
            differences.push_back(std::sqrt(squares / static_cast<double>(bands.size())));
            sum += differences.back();
            const auto late = static_cast<double>(point.itd - first.GetHrtfPoint(row).itd);
            delays += late * late;
            for (std::size_t place = 1; place + 4 <= sections.size(); place += 4) {
                EXPECT_TRUE(LiesWithin(sections[place], sections[place + 1], 0.999f)) << "zeros " << row;
                EXPECT_TRUE(LiesWithin(sections[place + 2], sections[place + 3], 0.995f)) << "poles " << row;
            }
        }
        std::sort(differences.begin(), differences.end());
        EXPECT_LT(sum / numDirections, 0.28) << "dB";
        EXPECT_LT(differences[numDirections * 95 / 100], 0.45) << "dB";
        EXPECT_LT(differences.back(), 0.70) << "dB";
        EXPECT_LT(std::sqrt(delays / numDirections), 0.02) << "ms";
    }
}

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

// Red if a room keeps the ears of another rate, or says nothing where there are none for its own.
TEST(BuiltinEars, FollowTheRateOfARoom) {
    Lume::Room room(1, 2), loudspeakers(1, 4);
    for (const float rate : {48000.0f, 192000.0f, 44100.0f, 96000.0f}) {
        room.Configure(rate, 64);
        EXPECT_EQ(static_cast<float>(room.EarsInfos()->samplingRate), rate);
        EXPECT_EQ(room.EarsRemark(), "");
    }
    room.Configure(50000.0f, 64);
    EXPECT_EQ(room.EarsRemark(),
              "the nearest of the built-in ears: made for 48000 Hz, the room runs at 50000; "
              "orvanverb hrtf convert makes a set for it");
    loudspeakers.Configure(50000.0f, 64);
    EXPECT_EQ(loudspeakers.EarsRemark(), "");
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
            const RunResult run = RunProgram(words);
            ASSERT_EQ(run.status, 0) << run.err;
            const double level = GainDbAt(ReadSound(out).samples[0], 10000.0 / rate);
            if (rate == 44100) first = level;
            EXPECT_NEAR(level, first, 1.5) << front << " " << rate;
        }
    }
}

}  // namespace
