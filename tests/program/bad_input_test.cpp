#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

class BadInput : public testing::Test {
protected:
    BadInput() {
        WriteSound(In("good.wav"), MakeTone(440.0, 0.1, 48000));
        WriteText(Out("out.wav"), "an earlier rendering");
    }
    std::string In(std::string const& name) const { return inputs / name; }
    std::string Out(std::string const& name) const { return outputs / name; }

    /// The complaint, and the earlier rendering untouched with nothing beside.
    void Expect(RunResult const& run, int status, std::string const& culprit) const {
        ExpectComplaint(run, status, culprit);
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(ReadText(Out("out.wav")), "an earlier rendering");
        EXPECT_EQ(outputs.NumFiles(), 1u);
    }
    /// Renders a good recording with more words.
    RunResult Render(std::vector<std::string> const& words) const {
        return RunProgram(Joined({"render", In("good.wav"), "-o", Out("out.wav")}, words));
    }

    TemporaryDirectory inputs, outputs;
};

TEST_F(BadInput, FilesAreNamedWithStatusOne) {
    WriteText(In("empty.wav"), "");
    WriteText(In("text.wav"), "this is no sound, although its name says so\n");
    Sound wide;
    wide.samples.assign(65, std::vector<float>(100, 0.1f));
    WriteSound(In("wide.wav"), wide);
    WriteSound(In("silent.wav"), {{{}}, 48000});
    std::filesystem::copy(In("good.wav"), In("cut.wav"));
    std::filesystem::resize_file(In("cut.wav"), 5000);
    // The cut is found when the work has begun.
    WriteSound(In("cut.flac"), MakeTone(440.0, 3.0, 48000), SF_FORMAT_FLAC | SF_FORMAT_PCM_16);
    std::filesystem::resize_file(In("cut.flac"), std::filesystem::file_size(In("cut.flac")) / 2);
    for (char const* name :
         {"missing.wav", "empty.wav", "text.wav", "wide.wav", "silent.wav", "cut.wav", "cut.flac", "."})
        Expect(Render({In(name)}), 1, In(name));

    WriteText(In("speakers"), "-30\nthirty\n");
    WriteText(In("room"), "tr0 2\n\ntr0 200\n");
    Expect(Render({"--speakers", In("speakers")}), 1, In("speakers") + ":2: ");
    Expect(Render({"--speakers", In("none")}), 1, In("none"));
    WriteText(In("binary"),
              "# fine\n\x7f"
              "ELF\x02\n");
    for (char const* option : {"--speakers", "--preset", "--scene", "--state"})
        Expect(Render({option, In("binary")}), 1, In("binary") + ":2: is no text");
    // Opens, and gives an error at the first read.
    for (char const* option : {"--speakers", "--preset", "--scene"})
        Expect(Render({option, "/proc/self/mem"}), 1, "/proc/self/mem: Input/output error");
    Expect(Render({"--preset", In("room")}), 1, In("room") + ":3: ");
    const std::string nowhere = Out("no/such/place.wav");
    Expect(RunProgram({"render", In("good.wav"), "-o", nowhere}), 1, nowhere);
}

// Red if what has run away reaches the file, or goes without a word. The input is within what may go in, near enough to
// the listener to come out beyond.
TEST_F(BadInput, WhatRunsAwayIsSilencedAndCounted) {
    Sound loud = MakeTone(440.0, 0.5, 48000);
    std::fill_n(loud.samples[0].begin() + 12000, 200, 9e5f);
    loud.samples[0][100] = 2e6f;
    WriteSound(In("loud.wav"), loud);
    const RunResult run = RunProgram({"render", In("loud.wav"), "-o", Out("out.wav"), "--speakers", "4", "--source",
                                      "1", "0", "0", "0.3", "--tail", "0.2"});
    EXPECT_EQ(run.status, 1);
    ExpectContains(run.err, "loud.wav: 1 samples were infinite, not a number or beyond 120 dBFS and became 0\n");
    ExpectContains(run.err, " samples were infinite, not a number or beyond 120 dBFS and became silence\n");
    float loudest = 0.0f;
    for (auto const& channel : ReadSound(Out("out.wav")).samples)
        for (const float sample : channel) loudest = std::max(loudest, std::fabs(sample));
    EXPECT_GT(loudest, 0.1f);
    EXPECT_LE(loudest, 1e6f);
}

TEST_F(BadInput, OptionsAreNamedWithStatusTwo) {
    const std::vector<std::string> cases[] = {
        {"--speakers", "1"},
        {"--speakers", "65"},
        {"--rate", "7999"},
        {"--rate", "fast"},
        {"--vector", "48"},
        {"--vector", "8"},
        {"--format", "mp3"},
        {"--format", "flac"},
        {"--format", "float", "-o", Out("out.flac")},
        {"--tail", "-1"},
        {"--set", "tr0"},
        {"--set", "tr0=11"},
        {"--set", "nothing=1"},
        {"--in-turn", "never"},
        {"--source", "0", "0", "0", "1"},
        {"--source", "2", "0", "0", "1"},
        {"--source", "1", "0", "0", "far"},
        {"--source", "1", "400", "0", "1"},
        {"--source", "1", "0", "0"},
        {"--surprise"},
    };
    for (std::vector<std::string> const& words : cases) Expect(Render(words), 2, words[0]);
    Expect(RunProgram({"render", "-o", Out("out.wav")}), 2, "inputs");
    Expect(RunProgram({"render", In("good.wav")}), 2, "--output");
    Expect(Render({"-o", Out("out.mp3")}), 2, "out.mp3");
    Expect(RunProgram({"rendr"}), 2, "rendr");
    Expect(RunProgram({}), 2, "subcommand");
    Expect(RunProgram({"ir", "-o", Out("out.flac"), "--speakers", "9"}), 2, "at most 8 channels");
}

// Red if a broken-off rendering leaves its pieces, or looks like a success.
TEST_F(BadInput, AFullDiskLeavesNothingBehind) {
    Expect(RunProgram({"ir", "-o", Out("out.wav"), "--tail", "30000"}, "ulimit -f 512; exec"), 1, Out("out.wav"));
}

}  // namespace
