#include <gtest/gtest.h>

#include <algorithm>
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

    /// One line that names the culprit, the right exit status, and the earlier rendering untouched with nothing beside.
    void Expect(RunResult const& run, int status, std::string const& culprit) const {
        EXPECT_EQ(run.status, status) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_TRUE(run.err.starts_with("orvanverb: ")) << run.err;
        EXPECT_NE(run.err.find(culprit), std::string::npos) << "'" << culprit << "' in: " << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(ReadText(Out("out.wav")), "an earlier rendering");
        EXPECT_EQ(outputs.NumFiles(), 1u);
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
        Expect(RunProgram({"render", In("good.wav"), In(name), "-o", Out("out.wav")}), 1, In(name));

    WriteText(In("speakers"), "-30\nthirty\n");
    WriteText(In("room"), "tr0 2\n\ntr0 200\n");
    const std::vector<std::string> render{"render", In("good.wav"), "-o", Out("out.wav")};
    const std::tuple<char const*, std::string, std::string> cases[] = {
        {"--speakers", In("speakers"), In("speakers") + ":2: "},
        {"--speakers", In("none"), In("none")},
        {"--preset", In("room"), In("room") + ":3: "},
        {"--output", Out("no/such/place.wav"), Out("no/such/place.wav")},
        {"--output", "/dev/null", "/dev/null"},
    };
    for (const auto& [option, value, culprit] : cases)
        Expect(
            RunProgram(std::string(option) == "--output"
                           ? std::vector<std::string>{"render", In("good.wav"), option, value}
                           : std::vector<std::string>{"render", In("good.wav"), "-o", Out("out.wav"), option, value}),
            1, culprit);
}

TEST_F(BadInput, OptionsAreNamedWithStatusTwo) {
    const std::vector<std::string> cases[] = {
        {"--speakers", "0"},
        {"--speakers", "1"},
        {"--speakers", "65"},
        {"--speakers", "-4"},
        {"--rate", "7999"},
        {"--rate", "fast"},
        {"--vector", "48"},
        {"--vector", "8"},
        {"--format", "mp3"},
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
    for (std::vector<std::string> const& words : cases) {
        std::vector<std::string> arguments{"render", In("good.wav"), "-o", Out("out.wav")};
        arguments.insert(arguments.end(), words.begin(), words.end());
        Expect(RunProgram(arguments), 2, words[0]);
    }
    Expect(RunProgram({"render", "-o", Out("out.wav")}), 2, "inputs");
    Expect(RunProgram({"render", In("good.wav")}), 2, "--output");
    Expect(RunProgram({"rendr"}), 2, "rendr");
    Expect(RunProgram({}), 2, "subcommand");
    Expect(RunProgram({"ir", "-o", Out("out.wav"), "--format", "flac", "--speakers", "9"}), 2, "--format flac");
}

// Red if a broken-off rendering leaves its pieces, or looks like a success.
TEST_F(BadInput, FullDiskAndInterruptionLeaveNothingBehind) {
    const std::vector<std::string> endless{"ir", "-o", Out("out.wav"), "--tail", "30000"};
    Expect(RunProgram(endless, "ulimit -f 512; exec"), 1, Out("out.wav"));
    Expect(RunProgram(endless, "exec timeout --preserve-status -s INT 0.3"), 1, "interrupted");
}

}  // namespace
