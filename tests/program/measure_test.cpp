#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/signals.h"

namespace {

/// Noise that decays by 60 dB in a time, in each channel another; 50 ms of silence before it.
Sound MakeDecay(double decaySeconds, unsigned int channels) {
    Sound sound;
    for (unsigned int channel = 1; channel <= channels; ++channel) {
        std::vector<float> samples = MakeNoise(channel, 48000);
        for (std::size_t n = 0; n < samples.size(); ++n)
            samples[n] *= static_cast<float>(std::pow(10.0, -3.0 * static_cast<double>(n) / 48000.0 / decaySeconds));
        samples.insert(samples.begin(), 2400, 0.0f);
        sound.samples.push_back(samples);
    }
    return sound;
}

/// The number behind a key, from a place in the text on.
double NumberBehind(std::string const& text, std::string const& key, std::size_t from = 0) {
    const std::size_t at = text.find(key, from);
    return at == std::string::npos ? std::nan("") : std::stod(text.substr(at + key.size()));
}

// Red if channels or bands change places on the way from the file, or if the rate is another.
TEST(MeasureCommand, TellsTheDecayOfAFile) {
    const TemporaryDirectory directory;
    WriteSound(directory / "room.wav", MakeDecay(0.8, 3));
    const RunResult run = RunWell({"measure", directory / "room.wav", "--json"});
    EXPECT_NEAR(NumberBehind(run.out, "\"t30\": ", run.out.find("\"band\": \"4000\"")), 0.8, 0.02);
    EXPECT_NEAR(NumberBehind(run.out, "\"direct\": {\"seconds\": "), 0.05, 0.001);
    EXPECT_NEAR(NumberBehind(run.out, "\"t30_mid\": "), 0.8, 0.06);
    EXPECT_LT(std::abs(NumberBehind(run.out, "\"correlation\": ", run.out.find("most_alike"))), 0.05);

    const RunResult table = RunWell({"measure", directory / "room.wav", "--bands", "third", "--channel", "2"});
    ExpectContains(table.out, "1 channel, 48000 Hz");
    ExpectContains(table.out, "\n   3150");
}

TEST(MeasureCommand, ComparesInStepsThatOneHears) {
    const TemporaryDirectory directory;
    WriteSound(directory / "room.wav", MakeDecay(0.88, 1));
    WriteSound(directory / "other.wav", MakeDecay(0.8, 1));
    const auto difference = [&](char const* file) {
        const RunResult run = RunWell({"measure", directory / "room.wav", "--against", directory / file});
        return run.out.substr(run.out.find(" against "));
    };
    EXPECT_NE(difference("room.wav").find("0 of "), std::string::npos);
    const std::string line = difference("other.wav");
    // 10 % longer are two steps, in EDT, T20 and T30.
    EXPECT_NEAR(NumberBehind(line, "\n   8000   "), 2.0, 0.3) << line;
}

TEST(MeasureCommand, SaysWhyFiguresAreMissing) {
    const TemporaryDirectory directory;
    Sound sound = MakeDecay(2.0, 1);  // cut at -30 dB
    WriteSound(directory / "cut.wav", sound);
    const RunResult cut = RunWell({"measure", directory / "cut.wav"});
    ExpectContains(cut.out,
                   "T30 at 63 to 16000 and all: the decay must be seen down to -45 dB; the response ends before");
    ExpectContains(cut.out, "C50 at 63, 125; C80 at 63; D50 at 63, 125: the band's filter blurs");
    sound.samples[0].assign(4800, 0.0f);
    WriteSound(directory / "silent.wav", sound);
    EXPECT_NE(RunProgram({"measure", directory / "silent.wav"}).out.find("silent"), std::string::npos);
}

TEST(MeasureCommand, DrawsAPictureOrSaysWhatIsMissing) {
    const TemporaryDirectory directory;
    WriteSound(directory / "room.wav", MakeDecay(0.5, 1));
    const RunResult bare =
        RunProgram({"measure", directory / "room.wav", "--plot", directory / "a.svg"}, "PATH=/nowhere");
    ExpectComplaint(bare, 1, "gnuplot-nox");
    EXPECT_EQ(directory.NumFiles(), 1u);
    for (char const* name : {"a.svg", "a.png"}) {
        const RunResult run = RunWell({"measure", directory / "room.wav", "--plot", directory / name});
        EXPECT_EQ(run.err, "");
        const std::string picture = ReadText(directory / name);
        EXPECT_GT(picture.size(), 20000u);
        ExpectContains(picture, name[2] == 's' ? "<svg" : "PNG");
    }
}

}  // namespace
