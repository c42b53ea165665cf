#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/places.h"

namespace {

constexpr double radian = 3.14159265358979 / 180.0;

class Formats : public testing::Test {
protected:
    Formats() { WriteSound(directory / "tone.wav", MakeTone(700.0, 0.3, 48000)); }

    /// What a command makes of the tone, or of an impulse.
    Sound Made(std::string const& command, std::vector<std::string> const& words) const {
        std::vector<std::string> all{command};
        if (command != "ir") all.push_back(directory / "tone.wav");
        const RunResult run = RunWell(Joined(Joined(all, {"-o", directory / "out.wav", "--tail", "0.1"}), words));
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
    const std::vector<double> expected = AmbixHarmonics(-40.0, 25.0);
    for (std::size_t c = 0; c < expected.size(); ++c)
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

/// Sound fields that pan makes and decode takes.
class SoundFields : public Formats {
protected:
    void Encode(std::vector<std::string> const& words) const {
        RunWell(Joined({"pan", directory / "tone.wav", "-o", directory / "field.wav", "--method"}, words));
    }
    Sound Decoded(std::vector<std::string> const& words, std::string const& name = "field.wav") const {
        RunWell(Joined({"decode", directory / name, "-o", directory / "out.wav", "--type"}, words));
        return ReadSound(directory / "out.wav");
    }
    /// A channel against the first one of the tone when all gains have come to rest.
    static double Gain(Sound const& sound, std::size_t channel, Sound const& tone) {
        double product = 0.0;
        for (std::size_t i = 4000; i < 14000; ++i)
            product += static_cast<double>(sound.samples[channel][i]) * static_cast<double>(tone.samples[0][i]);
        return product / Energies(tone, 4000, 14000)[0];
    }
};

// Red if a channel, a weight or an axis of the older format is another one: the formulas of its definition for a source
// at the front left and above, and the way back.
TEST_F(SoundFields, GoToFumaAndBack) {
    const double a = 60.0 * radian, e = 10.0 * radian, c = std::cos(e), s = std::sin(e);
    const double expected[] = {std::sqrt(0.5),
                               std::cos(a) * c,
                               std::sin(a) * c,
                               s,
                               1.5 * s * s - 0.5,
                               std::cos(a) * 2.0 * s * c,
                               std::sin(a) * 2.0 * s * c,
                               std::cos(2.0 * a) * c * c,
                               std::sin(2.0 * a) * c * c,
                               s * (5.0 * s * s - 3.0) / 2.0,
                               std::sqrt(135.0 / 256.0) * std::cos(a) * c * (5.0 * s * s - 1.0),
                               std::sqrt(135.0 / 256.0) * std::sin(a) * c * (5.0 * s * s - 1.0),
                               std::sqrt(27.0 / 4.0) * std::cos(2.0 * a) * s * c * c,
                               std::sqrt(27.0 / 4.0) * std::sin(2.0 * a) * s * c * c,
                               std::cos(3.0 * a) * c * c * c,
                               std::sin(3.0 * a) * c * c * c};
    const Sound tone = ReadSound(directory / "tone.wav");
    Encode({"hoa3d", "--source", "1", "-60", "10", "1"});
    const Sound fuma = Decoded({"fuma"});
    for (std::size_t k = 0; k < 16; ++k) EXPECT_NEAR(Gain(fuma, k, tone), expected[k], 1e-4) << k;
    WriteSound(directory / "fuma.wav", fuma);
    const Sound back = Decoded({"ambix", "--fuma"}, "fuma.wav");
    EXPECT_EQ(back.samples[0].size(), fuma.samples[0].size());
    Encode({"ambix", "--source", "1", "-60", "10", "1"});
    const Sound ambix = ReadSound(directory / "field.wav");
    for (std::size_t k = 0; k < 16; ++k) EXPECT_NEAR(Gain(back, k, tone), Gain(ambix, k, tone), 1e-4) << k;
}

// Red if a field turns the wrong way, about another axis, in the wrong axes or at another time.
TEST_F(SoundFields, TurnWithTheHead) {
    const Sound tone = ReadSound(directory / "tone.wav");
    WriteText(directory / "turn.scene", "0.0 orientation -40 0 0\n");
    for (std::string const method : {"ambix", "hoa3d"}) {
        const std::vector<std::string> form =
            method == "ambix" ? std::vector<std::string>{"--ambix"} : std::vector<std::string>{};
        Encode({method, "--source", "1", "0", "0", "1"});
        const Sound turned = Decoded(Joined({"ambix", "--orientation", "-40", "0", "0"}, form));
        const Sound scene = Decoded(Joined({"ambix", "--scene", directory / "turn.scene"}, form));
        const Sound nodded = Decoded(Joined({"ambix", "--orientation", "0", "30", "0"}, form));
        Encode({"ambix", "--source", "1", "40", "0", "1"});
        const Sound beside = ReadSound(directory / "field.wav");
        Encode({"ambix", "--source", "1", "0", "-30", "1"});
        const Sound below = ReadSound(directory / "field.wav");
        for (std::size_t k = 0; k < 16; ++k) {
            EXPECT_NEAR(Gain(turned, k, tone), Gain(beside, k, tone), 1e-4) << method << k;
            EXPECT_NEAR(Gain(scene, k, tone), Gain(beside, k, tone), 1e-4) << method << k;
            EXPECT_NEAR(Gain(nodded, k, tone), Gain(below, k, tone), 1e-4) << method << k;
        }
        // Loudspeakers, too: what comes from the front right of a cube is played there.
        Encode({method, "--order", "1", "--source", "1", "0", "0", "1"});
        const Sound cube = Decoded(Joined({"hoa3d", "--orientation", "-45", "0", "0"}, form));
        EXPECT_GT(Gain(cube, 1, tone), 2.0 * Gain(cube, 0, tone));
        EXPECT_NEAR(Gain(cube, 0, tone), Gain(cube, 2, tone), 1e-3);
    }
}

// Red if the ears change places, if a field comes much louder or softer than a source, or if a convention isn't heeded.
TEST_F(SoundFields, AreHeardOnHeadphones) {
    const std::vector<std::string> place{"--source", "1", "-60", "10", "1"};
    const Sound direct = Made("pan", Joined({"--method", "binaural"}, place));
    const std::pair<std::vector<std::string>, std::vector<std::string>> forms[] = {
        {{"hoa3d"}, {}},
        {{"ambix", "--order", "5"}, {"--ambix"}},
        {{"hoa3d", "--convention", "N3D"}, {"--convention", "N3D"}}};
    for (auto const& [encoding, decoding] : forms) {
        Encode(Joined(encoding, place));
        const Sound heard = Decoded(Joined({"binaural"}, decoding));
        ASSERT_EQ(heard.samples.size(), 2u);
        for (std::size_t ear = 0; ear < 2; ++ear)
            EXPECT_NEAR(10.0 * std::log10(Energies(heard, 4000, 14000)[ear] / Energies(direct, 4000, 14000)[ear]), 0.0,
                        1.0)
                << encoding[0] << ear;
    }
    Encode({"hoa3d", "--order", "4"});
    ExpectComplaint(RunProgram({"decode", directory / "field.wav", "-o", directory / "o.wav", "--type", "fuma"}), 2,
                    "up to the order 3");
    WriteText(directory / "bad.scene", "1 source 1 azim 3\n");
    ExpectComplaint(RunProgram({"decode", directory / "field.wav", "-o", directory / "o.wav", "--type", "binaural",
                                "--scene", directory / "bad.scene"}),
                    1, "bad.scene:1: a recorded sound field knows");
}

}  // namespace
