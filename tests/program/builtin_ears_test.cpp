#include <gtest/gtest.h>
#include <mysofa.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <span>

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

/// The head that was measured, its left ear. tools/hrtf judges every direction and more of each.
class MeasuredHead {
public:
    MeasuredHead() {
        int error = 0;
        sofa.reset(mysofa_load("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", &error));
        diffuse.assign(axis.NumPoints(), 0.0);
        // A third of the directions: each counts for its part of the ring it lies on.
        double weights = 0.0;
        for (unsigned int row = 0; row < 710; row += 3) {
            const std::vector<double> power = Power(row);
            const double weight = row >= 697 ? 0.5 : 1.0;
            for (std::size_t i = 0; i < power.size(); ++i) diffuse[i] += weight * power[i];
            weights += weight;
        }
        for (double& value : diffuse) value = Decibels(value / weights);
    }

    /// Levels in bands of one ERB, without what all directions have in common.
    std::vector<double> Bands(unsigned int row) const {
        std::vector<double> level = Power(row);
        for (std::size_t i = 0; i < level.size(); ++i) level[i] = Decibels(level[i]) - diffuse[i];
        return axis.BandLevels(level);
    }

    const program::ErbAxis axis{44100.0};

private:
    struct Free {
        void operator()(MYSOFA_HRTF* set) const { mysofa_free(set); }
    };

    std::vector<double> Power(unsigned int row) const {
        const std::span<float const> response(sofa->DataIR.values + 2 * std::size_t{row} * sofa->N, sofa->N);
        std::vector<double> power;
        for (const double hertz : axis.Frequencies()) power.push_back(std::norm(ResponseAt(response, hertz / 44100.0)));
        return power;
    }

    std::unique_ptr<MYSOFA_HRTF, Free> sofa;
    std::vector<double> diffuse;
};

/// Whether both roots of 1 + c1 z^-1 + c2 z^-2 lie within a radius.
bool LiesWithin(float c1, float c2, float radius) {
    const float c2Scaled = c2 / (radius * radius);
    return std::abs(c2Scaled) < 1.0f && std::abs(c1 / radius) < 1.0f + c2Scaled;
}

// Red if a set is of another rate than it says, or coarser than the one for 44.1 kHz.
TEST(BuiltinEars, AreTheMeasuredHeadAtEveryRate) {
    constexpr unsigned int step = 9;  // of the directions
    const MeasuredHead head;
    const Lume::Hrtf first("");
    std::vector<std::vector<double>> wantedBands;
    for (unsigned int row = 0; row < 710; row += step) wantedBands.push_back(head.Bands(row));
    for (const float rate : {44100.0f, 48000.0f, 88200.0f, 96000.0f, 176400.0f, 192000.0f}) {
        SCOPED_TRACE(rate);
        const Lume::Hrtf set = Lume::Hrtf::Builtin(rate);
        ASSERT_EQ(static_cast<float>(set.GetSamplingRate()), rate);
        ASSERT_EQ(set.GetNumPoints(), 710u);
        double sum = 0.0, worst = 0.0, delays = 0.0;
        unsigned int count = 0;
        for (unsigned int row = 0; row < 710; row += step, ++count) {
            Lume::HrtfPoint const& point = set.GetHrtfPoint(row);
            const std::span<float const> sections = Lume::EarCoefficients(point, 0);
            std::vector<double> made;
            for (const double hertz : head.axis.Frequencies())
                made.push_back(
                    Decibels(std::norm(program::ResponseOfSections(sections, hertz, static_cast<double>(rate)))));
            const std::vector<double> bands = head.axis.BandLevels(made);
            std::vector<double> const& wanted = wantedBands[count];
            double squares = 0.0;
            for (std::size_t b = 0; b < bands.size(); ++b) squares += (bands[b] - wanted[b]) * (bands[b] - wanted[b]);
            const double difference = std::sqrt(squares / static_cast<double>(bands.size()));
            sum += difference;
            worst = std::max(worst, difference);
            const auto late = static_cast<double>(point.itd - first.GetHrtfPoint(row).itd);
            delays += late * late;
            for (std::size_t place = 1; place < sections.size(); place += 2)
                EXPECT_TRUE(LiesWithin(sections[place], sections[place + 1], 0.995f)) << row << " " << place;
        }
        EXPECT_LT(sum / count, 0.35) << "dB";  // of all directions, against their exact mean: 0.28
        EXPECT_LT(worst, 0.75) << "dB";
        EXPECT_LT(std::sqrt(delays / count), 0.02) << "ms";
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
