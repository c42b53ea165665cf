#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/signals.h"

namespace {

constexpr double radian = 3.14159265358979 / 180.0;

class DecodeCommand : public testing::Test {
protected:
    std::string Path(std::string const& name) const { return directory / name; }

    void Write(std::string const& name, std::vector<float> const& levels, bool tone = false) const {
        Sound sound;
        std::vector<float> signal(9600, 1.0f);
        if (tone) signal = MakeTone(1000.0, 0.2, 48000).samples[0];
        for (const float level : levels) {
            sound.samples.push_back(signal);
            for (float& sample : sound.samples.back()) sample *= level;
        }
        WriteSound(Path(name), sound);
    }
    Sound Decode(std::string const& name, std::vector<std::string> const& words) const {
        RunWell(Joined({"decode", Path(name), "-o", Path("out.wav")}, words));
        return ReadSound(Path("out.wav"));
    }

    TemporaryDirectory directory;
};

// What pan encodes, decode brings back to where it was, in the library's axes and in those of other tools. Red if the
// two disagree about axes, weights or the order of channels.
TEST_F(DecodeCommand, BringsBackWhatPanEncoded) {
    Write("ones.wav", {1.0f});
    const std::tuple<std::vector<std::string>, std::vector<std::string>> ways[] = {
        {{"--method", "hoa2d", "--outputs", "5"}, {"--type", "hoa2d", "--speakers", "8"}},
        {{"--method", "hoa2d", "--convention", "N2D", "--sorting", "AlternateDegrees"},
         {"--type", "hoa2d", "--convention", "N2D", "--sorting", "AlternateDegrees", "--weights", "maxre"}},
        {{"--method", "hoa3d", "--outputs", "4"}, {"--type", "hoa3d"}},
        {{"--method", "hoa3d", "--outputs", "4", "--ambix"}, {"--type", "hoa3d", "--ambix"}},
    };
    WriteText(Path("ring"), "-135\n-90\n-45\n0\n45\n90\n135\n180\n");
    for (auto [encode, decode] : ways) {
        for (const double azimuth : {-70.0, 20.0, 130.0}) {
            const std::vector<std::string> arguments{
                "pan", Path("ones.wav"), "-o", Path("coded.wav"), "--source", "1", std::to_string(azimuth), "0", "1"};
            RunWell(Joined(arguments, encode));
            const bool cube = decode[1] == "hoa3d";
            if (!cube) decode.insert(decode.end(), {"--speakers", Path("ring")});
            const Sound sound = Decode("coded.wav", decode);
            double x = 0.0, y = 0.0;
            for (std::size_t c = 0; c < 8; ++c) {
                const double cubes[] = {-45.0, 45.0, 135.0, -135.0, -45.0, 45.0, 135.0, -135.0};
                const double angle = (cube ? cubes[c] : -135.0 + 45.0 * static_cast<double>(c)) * radian;
                x += static_cast<double>(sound.samples[c][9000]) * std::sin(angle);
                y += static_cast<double>(sound.samples[c][9000]) * std::cos(angle);
            }
            EXPECT_NEAR(std::atan2(x, y) / radian, azimuth, 0.5) << encode[1];
        }
    }
}

// A tetrahedron is as regular as can be: all singular values are equal, at 0 dB in N3D. Loudspeakers in one plane are
// warned of.
TEST_F(DecodeCommand, ShowsMatrixAndCondition) {
    Write("four.wav", {1.0f, 0.0f, 0.0f, 0.0f});
    WriteText(Path("tetrahedron"), "0 90\n0 -19.4712\n120 -19.4712\n-120 -19.4712\n");
    const RunResult run = RunWell({"decode", Path("four.wav"), "--type", "hoa3d", "--convention", "N3D", "--speakers",
                                   Path("tetrahedron"), "--matrix"});
    ExpectContains(run.out,
                   "order 1, pseudoinverse, basic\ncondition number 0.00 dB\nregularity 0.000015259, "
                   "semi-regularity 0.003906250\n");
    ExpectContains(run.out, "channel 1 (azimuth 0 elevation 90): 0.250000 0.000000 0.433013 0.000000");
    EXPECT_EQ(run.err, "");
    const RunResult flat = RunProgram({"decode", Path("four.wav"), "--type", "hoa3d", "--speakers", "8", "--matrix"});
    ExpectContains(flat.err, "warning: the loudspeakers don't suit");
}

// Channel orders of the formats: a centre goes to both of two, a left one to the left.
TEST_F(DecodeCommand, FormatsKeepTheirChannelOrder) {
    Write("centre.wav", {0.0f, 1.0f, 0.0f, 0.0f}, true);
    const Sound lrs = Decode("centre.wav", {"--type", "surround", "--outputs", "3"});
    ASSERT_EQ(lrs.samples.size(), 3u);
    EXPECT_NEAR(LevelDb(lrs.samples[0]), LevelDb(lrs.samples[1]), 1e-3);
    EXPECT_LT(LevelDb(lrs.samples[2]), -100.0);
    Write("left.wav", {1.0f, 0.0f}, true);
    const Sound lcrs = Decode("left.wav", {"--type", "surround"});
    ASSERT_EQ(lcrs.samples.size(), 4u);
    EXPECT_GT(LevelDb(lcrs.samples[0]), LevelDb(lcrs.samples[1]));
    EXPECT_LT(LevelDb(lcrs.samples[2]), -100.0);
    EXPECT_EQ(Decode("centre.wav", {"--type", "bformat2uhj", "--outputs", "4"}).samples.size(), 4u);
    EXPECT_EQ(Decode("left.wav", {"--type", "uhj2bformat"}).samples.size(), 3u);
    EXPECT_EQ(Decode("centre.wav", {"--type", "bformat", "--speakers", "5"}).samples.size(), 5u);
    const Sound pair = Decode("left.wav", {"--type", "transaural"});
    EXPECT_GT(LevelDb(pair.samples[0]), LevelDb(pair.samples[1]));
}

TEST_F(DecodeCommand, NetworksWithoutFiltersSayWhatTheyNeed) {
    Write("two.wav", {1.0f, 1.0f});
    const RunResult silent = RunWell(
        {"decode", Path("two.wav"), "-o", Path("out.wav"), "--type", "transaural", "--sub-type", "leastsquares"});
    ExpectContains(silent.err, "--network leastsquares makes");
    EXPECT_NE(RunProgram({"decode", "--list"}).out.find("recursivesymmetricbiquads"), std::string::npos);
}

}  // namespace
