#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <sstream>

#include "orvanverb/hrtf/sdif_set_writer.h"
#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/places.h"
#include "support/signals.h"

namespace {

constexpr double radian = 3.14159265358979 / 180.0;

class PanCommand : public testing::Test {
protected:
    PanCommand() {
        Sound ones;
        ones.samples.assign(1, std::vector<float>(9600, 1.0f));
        WriteSound(directory / "ones.wav", ones);
        WriteSound(directory / "tone.wav", MakeTone(1000.0, 0.3, 48000));
    }

    RunResult Pan(std::string const& input, std::vector<std::string> const& words) const {
        return RunProgram(Joined({"pan", directory / input, "-o", directory / "out.wav"}, words));
    }
    Sound Panned(std::string const& input, std::vector<std::string> const& words) const {
        const RunResult run = Pan(input, words);
        EXPECT_EQ(run.status, 0) << run.err;
        return ReadSound(directory / "out.wav");
    }
    /// The gains of a source at rest.
    std::vector<double> Gains(std::vector<std::string> words, double azimuth, double elevation) const {
        words.insert(words.end(), {"--source", "1", std::to_string(azimuth), std::to_string(elevation), "1"});
        std::vector<double> gains;
        for (std::vector<float> const& channel : Panned("ones.wav", words).samples)
            gains.push_back(static_cast<double>(channel.back()));
        return gains;
    }

    TemporaryDirectory directory;
};

// Red if an axis, the order of the channels or a weight isn't what other tools read.
TEST_F(PanCommand, AmbixIsTheFormOfOtherTools) {
    for (const auto& [azimuth, elevation] : {std::pair{0.0, 0.0}, {-90.0, 0.0}, {35.0, 20.0}, {-160.0, -55.0}}) {
        const std::vector<double> expected = AmbixHarmonics(azimuth, elevation);
        const std::vector<double> gains = Gains({"--method", "hoa3d", "--ambix"}, azimuth, elevation);
        ASSERT_EQ(gains.size(), 16u);
        for (std::size_t i = 0; i < 16; ++i) EXPECT_NEAR(gains[i], expected[i], 1e-5) << azimuth << ": ACN " << i;
    }
    const RunResult words = Pan("ones.wav", {"--ambix", "--outputs", "4"});
    ExpectContains(words.err, "channel 2 (ACN 1, degree 1 order -1, Y: to the left)");
    // The library's own axes have x to the right; full normalisation and the other order of channels.
    const std::vector<double> own =
        Gains({"--method", "hoa", "--outputs", "4", "--convention", "n3d", "--sorting", "alternatedegrees"}, 90.0, 0.0);
    EXPECT_NEAR(own[1], std::sqrt(3.0), 1e-5);
    for (const std::size_t i : {2u, 3u}) EXPECT_NEAR(own[i], 0.0, 1e-5);
}

// Every method has its channels and is heard; those that promise it keep the power.
TEST_F(PanCommand, EveryListedMethodSounds) {
    const std::set<std::string> constantPower{"surround", "panr", "angular", "vbap2d", "vbap", "dbap3d"};
    std::istringstream list(RunProgram({"pan", "--list"}).out);
    std::string line, name;
    std::getline(list, line);
    std::size_t numMethods = 0;
    while (std::getline(list, line) && std::istringstream(line) >> name) {
        ++numMethods;
        const Sound sound = Panned("ones.wav", {"--method", name, "--source", "1", "20", "10", "1"});
        double power = 0.0;
        for (std::vector<float> const& channel : sound.samples)
            power += static_cast<double>(channel[9599]) * static_cast<double>(channel[9599]);
        EXPECT_GT(power, 0.01) << name;
        if (constantPower.count(name) != 0) {
            EXPECT_NEAR(power, 1.0, 0.001) << name;
        }
    }
    EXPECT_EQ(numMethods, 15u);
}

// A source at the right is louder at the right ear, whatever makes the ears.
TEST_F(PanCommand, HeadphoneModelsPutASourceAside) {
    for (char const* model : {"direct", "sphericalhead", "snowman", "nearfield", "early"}) {
        const Sound sound =
            Panned("tone.wav", {"--method", "binaural", "--model", model, "--source", "1", "80", "0", "2"});
        ASSERT_EQ(sound.samples.size(), 2u) << model;
        EXPECT_GT(LevelDb(sound.samples[1]) - LevelDb(sound.samples[0]), 2.0) << model;
    }
}

// Sets made by the program's writer load and act: a near one only on sources within its range.
TEST_F(PanCommand, FiltersComeFromFiles) {
    Lume::SdifSet set;
    set.header.hrtfType = Lume::hrtfNearfieldCompensationFilter;
    set.header.numCoefficients = 25;
    set.header.numChannels = 2;
    set.header.samplingRate = 48000;
    Lume::SdifSetPoint point{{{1.0f, 0.0f, 0.0f}}, 0.0f, std::vector<float>(50, 0.0f)};
    point.coefficients[0] = point.coefficients[25] = 2.0f;  // the gains: 6 dB
    set.points = {point};
    WriteText(directory / "set.near", program::SdifSetBytes(set, "me"));
    for (const auto& [distance, expected] : {std::pair{"0.6", 6.02}, {"1.5", 0.0}}) {
        const std::vector<std::string> words{"--method", "binaural", "--model", "nearfield", "--source",
                                             "1",        "30",       "0",       distance};
        const double without = LevelDb(Panned("tone.wav", words).samples[0]);
        const Sound with = Panned("tone.wav", Joined(words, {"--near", directory / "set.near"}));
        EXPECT_NEAR(LevelDb(with.samples[0]) - without, expected, 0.05) << distance;
    }

    set.header.hrtfType = Lume::hrtfBinaural;
    set.header.filterType = Lume::hrtfFIR;
    set.header.numCoefficients = 4;
    set.points[0].coefficients = {0.0f, 0.0f, 0.5f, 0.0f, 0.25f, 0.0f, 0.0f, 0.0f};
    WriteText(directory / "set.hrtf", program::SdifSetBytes(set, "me"));
    const Sound own = Panned("tone.wav", {"--method", "binaural", "--hrtf", directory / "set.hrtf"});
    const Sound tone = ReadSound(directory / "tone.wav");
    for (std::size_t i = 100; i < 10000; i += 7) {
        ASSERT_NEAR(own.samples[0][i], 0.5f * 0.70710678f * tone.samples[0][i - 2], 1e-6f);
        ASSERT_NEAR(own.samples[1][i], 0.25f * 0.70710678f * tone.samples[0][i], 1e-6f);
    }
}

TEST_F(PanCommand, ASceneMovesSources) {
    WriteText(directory / "move.scene", "source 1 azim -90\n0.1 source 1 ade 90 2 0\n");
    const Sound sound =
        Panned("ones.wav", {"--method", "vbap2d", "--speakers", "8", "--scene", directory / "move.scene"});
    EXPECT_NEAR(sound.samples[7][4000], 1.0f, 1e-4f);  // azimuth -90
    EXPECT_NEAR(sound.samples[7][9500], 0.0f, 1e-4f);
    EXPECT_NEAR(sound.samples[3][9500], 1.0f, 1e-4f);  // azimuth 90
    WriteText(directory / "bad.scene", "source 1 azim -90\n0.1 source 2 ade 90 2 0\n");
    ExpectComplaint(Pan("ones.wav", {"--method", "xy", "--scene", directory / "bad.scene"}), 1,
                    directory / "bad.scene:2: ");
}

TEST_F(PanCommand, TablesShowGainsAndTriplets) {
    // Pairs at +-45 degrees share by the tangent law: tan(a) / tan(45) = (right - left) / (right + left).
    std::istringstream gains(RunProgram({"pan", "--method", "vbap2d", "--speakers", "4", "--gains"}).out);
    std::string line;
    std::getline(gains, line);
    double azimuth = 0.0, left = 0.0, right = 0.0;
    for (int degrees = 0; degrees < 45 && gains >> azimuth >> left >> right; ++degrees, std::getline(gains, line))
        ASSERT_NEAR((right - left) / (right + left), std::tan(azimuth * radian), 1e-4) << azimuth;
    EXPECT_EQ(azimuth, 44.0);

    // A convex hull of V corners has 2 V - 4 triangles.
    const std::string triplets = RunProgram({"pan", "--method", "vbap", "--triplets"}).out;
    std::size_t count = 0;
    for (std::size_t at = 0; (at = triplets.find("triplet", at)) != std::string::npos; ++at) ++count;
    EXPECT_EQ(count, 12u);
    ExpectContains(triplets, "speaker 1 -45.00 35.26");
}

// Methods end in silence or in an odd law on such layouts, without a word: the program says why.
TEST_F(PanCommand, BadLayoutsAreExplained) {
    WriteText(directory / "speakers", "-30\n30\n110 40\n-110\n");
    const RunResult run = Pan("ones.wav", {"--method", "angular", "--speakers", directory / "speakers"});
    ExpectContains(run.err, "warning: loudspeaker 3 stands above or below");
    for (char const* method : {"vbap2d", "angular", "dbap", "panr", "surround", "vbap", "vdbap", "hoa2d", "binaural"})
        EXPECT_EQ(Pan("ones.wav", {"--method", method}).err.find("warning"), std::string::npos) << method;
}

}  // namespace
