#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

constexpr double radian = 3.14159265358979 / 180.0;

class Formats : public testing::Test {
protected:
    Formats() { WriteSound(directory / "tone.wav", MakeTone(700.0, 0.3, 48000)); }

    /// What a command makes of the tone, or of an impulse.
    Sound Made(std::string const& command, std::vector<std::string> const& words) const {
        std::vector<std::string> all{command};
        if (command != "ir") all.push_back(directory / "tone.wav");
        const RunResult run = RunProgram(Joined(Joined(all, {"-o", directory / "out.wav", "--tail", "0.1"}), words));
        EXPECT_EQ(run.status, 0) << run.err;
        said = run.err;
        return ReadSound(directory / "out.wav");
    }
    static double Energy(Sound const& sound, std::size_t channel) {
        return Energies(sound, 0, sound.NumFrames())[channel];
    }

    TemporaryDirectory directory;
    mutable std::string said;
};

// The forms that productions ask for, by one option each. Red if a layout loses a channel, its order or its mask, if a
// low-frequency channel sounds, or isn't said.
TEST_F(Formats, OneOptionMakesEachForm) {
    struct Form {
        std::vector<std::string> words;
        std::size_t channels, silent;
        unsigned int mask;
    };
    const Form forms[] = {{{"--method", "stereo"}, 2, 2, 0x3},      {{"--speakers", "5.0"}, 5, 5, 0x607},
                          {{"--speakers", "5.1"}, 6, 3, 0x60F},     {{"--speakers", "7.1.4"}, 12, 3, 0x2D63F},
                          {{"--speakers", "22.2"}, 24, 3, 0},       {{"--speakers", "dome24"}, 24, 24, 0},
                          {{"--ambix", "--order", "3"}, 16, 16, 0}, {{}, 2, 2, 0x3}};
    for (Form const& form : forms) {
        const Sound sound = Made("render", Joined({"--source", "1", "-30", "0", "1"}, form.words));
        ASSERT_EQ(sound.samples.size(), form.channels);
        EXPECT_EQ(ReadChannelMask(directory / "out.wav"), form.mask) << form.channels;
        for (std::size_t c = 0; c < form.channels; ++c) {
            if (c == form.silent || (form.mask == 0 && form.channels == 24 && form.silent == 3 && c == 9))
                EXPECT_EQ(Energy(sound, c), 0.0) << c;
            else
                EXPECT_GT(Energy(sound, c), 1e-3) << form.channels << " " << c;
        }
        EXPECT_EQ(said.find("LFE") != std::string::npos, form.silent == 3) << said;
    }
}

// Red if a source above is heard at the height of the ears, or one at the front left elsewhere: the direct sound of a
// response is its first sample, against the closed form of what other tools read.
TEST_F(Formats, SourcesStandWhereTheyWerePut) {
    const Sound ambix = Made("ir", {"--ambix", "--source", "1", "-40", "25", "1"});
    const double a = 40.0 * radian, e = 25.0 * radian;
    const double x = std::cos(a) * std::cos(e), y = std::sin(a) * std::cos(e), z = std::sin(e);
    const double root3 = std::sqrt(3.0);
    const double expected[] = {
        1.0, y, z, x, root3 * x * y, root3 * y * z, 1.5 * z * z - 0.5, root3 * x * z, root3 / 2.0 * (x * x - y * y)};
    for (std::size_t c = 0; c < std::size(expected); ++c)
        EXPECT_NEAR(ambix.samples[c][0] / ambix.samples[0][0], expected[c], 1e-4) << c;

    const Sound above = Made("ir", {"--speakers", "7.1.4", "--source", "1", "45", "45", "1"});
    for (std::size_t c = 0; c < 12; ++c)
        EXPECT_NEAR(above.samples[c][0] / above.samples[9][0], c == 9 ? 1.0 : 0.0, 1e-3) << c;
}

// Red if a message or an option turns the listener the wrong way, or not at all, in a room or without one.
TEST_F(Formats, TheListenerTurns) {
    WriteText(directory / "turn.scene", "orientation -40 0 0\n0.2 orientation 60\n");
    for (std::string const command : {"ir", "pan"}) {
        std::vector<std::string> words{"--method", "ambix"};
        if (command == "pan") words.insert(words.end(), {"--vector", "64"});
        const auto with = [&](std::vector<std::string> const& more) { return Made(command, Joined(words, more)); };
        // The head looks to the left: what is ahead is 40 degrees to its right.
        const Sound turned = with({"--orientation", "-40", "0", "0", "--source", "1", "0", "0", "1"});
        const Sound scene = with({"--scene", directory / "turn.scene", "--source", "1", "0", "0", "1"});
        const Sound placed = with({"--source", "1", "40", "0", "1"});
        for (std::size_t c = 0; c < 16; ++c) {
            for (std::size_t i = 0; i < 4000; ++i) {
                ASSERT_NEAR(turned.samples[c][i], placed.samples[c][i], 1e-5) << command << c;
                ASSERT_NEAR(scene.samples[c][i], placed.samples[c][i], 1e-5) << command << c;
            }
        }
    }
    const Sound later = Made("pan", {"--method", "ambix", "--scene", directory / "turn.scene"});
    EXPECT_LT(Energies(later, 4000, 8000)[1], Energies(later, 4000, 8000)[0]);
    // At the end the head looks 60 degrees to the right, so that the source is on its left: Y beside W.
    double product = 0.0;
    for (std::size_t i = 13000; i < 14000; ++i)
        product += static_cast<double>(later.samples[0][i]) * static_cast<double>(later.samples[1][i]);
    EXPECT_NEAR(product / Energies(later, 13000, 14000)[0], std::sin(60.0 * radian), 1e-3);
    WriteText(directory / "bad.scene", "orientation 30 x\n");
    const RunResult refused = RunProgram({"ir", "-o", directory / "o.wav", "--scene", directory / "bad.scene"});
    ExpectComplaint(refused, 1, "bad.scene:1: orientation: pitch 'x' is not a number");
}

// Red if a state of one form sounds otherwise when it comes back, or is taken for another form.
TEST_F(Formats, StatesRememberTheForm) {
    const std::string state = directory / "room.state";
    for (std::vector<std::string> const& words :
         {std::vector<std::string>{"--ambix", "--order", "2"}, {"--speakers", "9.1.6"}, {"--method", "stereo"}}) {
        const Sound first = Made("render", Joined(words, {"--save-state", state, "--orientation", "10", "5", "-3"}));
        const Sound again = Made("render", {"--state", state});
        EXPECT_TRUE(first.samples == again.samples) << words[1];
        ExpectComplaint(RunProgram({"ir", "-o", directory / "o.wav", "--state", state, "--method", "xy"}), 1, "format");
    }
}

TEST_F(Formats, RefusesWhatAFormDoesNotHave) {
    const std::pair<std::vector<std::string>, char const*> refused[] = {
        {{"--method", "surround"}, "--method: 'surround' is none that a room has"},
        {{"--order", "2"}, "--order"},
        {{"--ambix", "--speakers", "8"}, "--speakers"},
        {{"--ambix", "--order", "8"}, "--order: '8' is no order from 1 to 7"},
        {{"--method", "stereo", "--speakers", "5"}, "--speakers"},
        {{"--method", "vbap", "--speakers", "5.1"}, "--method vbap2d suits them"},
        {{"--speakers", "7.5"}, "22.2"}};
    for (auto const& [words, culprit] : refused)
        ExpectComplaint(RunProgram(Joined({"ir", "-o", directory / "o.wav"}, words)), 2, culprit);
    ExpectComplaint(RunProgram({"ir", "-o", directory / "o.wav", "--speakers", "6.1.2.speakers"}), 1, "7.1.4");
}

}  // namespace
