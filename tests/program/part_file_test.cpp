#include "orvanverb/common/part_file.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "orvanverb/common/program_error.h"
#include "orvanverb/common/whole_file.h"
#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

using program::PartFile;
using program::WholeFile;

unsigned int ModeOf(std::string const& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0);
    return status.st_mode & 07777u;
}

// Red if a part of a killed writer stays for ever, or one that is being written, or a stranger's file, goes.
TEST(PartFile, RemovesWhatTheKilledLeftAndNothingElse) {
    const TemporaryDirectory directory;
    const std::string stale = directory / "a.wav.orvanverb-part-01234567";
    const std::string strangers[] = {directory / "a.wav.orvanverb-part-mine", directory / "a.wav.part123",
                                     directory / "ba.wav.orvanverb-part-01234567"};
    for (std::string const& stranger : strangers) WriteText(stranger, "mine");
    WriteText(stale, "left");
    PartFile first(directory / "a.wav");
    EXPECT_FALSE(std::filesystem::exists(stale));
    PartFile second(directory / "a.wav");
    EXPECT_NE(first.PartPath(), second.PartPath());
    for (PartFile* file : {&second, &first}) {
        EXPECT_TRUE(std::filesystem::exists(file->PartPath()));
        file->Commit();
    }
    for (std::string const& stranger : strangers) EXPECT_EQ(ReadText(stranger), "mine");
    EXPECT_EQ(directory.NumFiles(), 1u + std::size(strangers));
}

// Red if a private file becomes readable for all, or a link a file.
TEST(PartFile, KeepsRightsAndLinks) {
    const TemporaryDirectory directory;
    const mode_t mask = umask(022);
    WholeFile(directory / "file").Write("one");
    EXPECT_EQ(ModeOf(directory / "file"), 0644u);
    chmod((directory / "file").c_str(), 0600);
    std::filesystem::create_symlink("file", directory / "link");
    WholeFile(directory / "link").Write("two");
    EXPECT_EQ(ModeOf(directory / "file"), 0600u);
    EXPECT_EQ(ReadText(directory / "file"), "two");
    std::filesystem::create_symlink("new", directory / "dangling");
    WholeFile(directory / "dangling").Write("three");
    EXPECT_EQ(ReadText(directory / "new"), "three");
    EXPECT_TRUE(std::filesystem::is_symlink(directory / "dangling"));
    EXPECT_EQ(directory.NumFiles(), 4u);
    umask(mask);
}

class Files : public testing::Test {
protected:
    Files() { WriteSound(directory / "in.wav", MakeTone(440.0, 0.1, 48000)); }
    RunResult Render(std::vector<std::string> const& words, std::string const& before = {}) const {
        return RunProgram(Joined({"render", directory / "in.wav", "-o", directory / "out.wav"}, words), before);
    }
    TemporaryDirectory directory;
};

// Red if any output of a call can take the place of what the call reads.
TEST_F(Files, AreNeverReadAndWrittenByOneCall) {
    std::filesystem::create_symlink(directory / "in.wav", directory / "link.wav");
    const std::string in = directory / "in.wav", recording = ReadText(in), link = directory / "link.wav";
    const std::string out = directory / "out.wav";
    WriteText(directory / "room", "tr0 1\n");
    WriteText(directory / "walk", "0.02 source 1 azim 30\n");
    const std::vector<std::string> calls[] = {
        {"render", in, "-o", in},
        {"render", in, "-o", link},
        {"render", in, "-o", out, "--save-state", in},
        {"render", in, "-o", out, "--save-state", directory / "./link.wav"},
        {"render", in, "-o", out, "--save-state", out},
        {"render", in, "-o", out, "--preset", directory / "room", "--save-state", directory / "room"},
        {"render", in, "-o", directory / "walk", "--scene", directory / "walk"},
        {"ir", "-o", out, "--state", directory / "room", "--save-state", directory / "room"},
        {"pan", in, "-o", in, "--method", "vbap2d"},
        {"decode", in, "-o", in, "--type", "hoa2d"},
        {"hrtf", "convert", in, in},
    };
    for (std::vector<std::string> const& call : calls) {
        ExpectComplaint(RunProgram(call), 2, "at once");
        EXPECT_EQ(ReadText(in), recording);
        EXPECT_EQ(ReadText(directory / "room"), "tr0 1\n");
        EXPECT_EQ(directory.NumFiles(), 4u) << call.back();
    }
}

// Red if a state is written in place.
TEST_F(Files, AStateThatCannotBeWrittenLeavesTheOldOne) {
    WriteText(directory / "old.state", "what was there");
    // Not even the complaint fits.
    EXPECT_EQ(Render({"--save-state", directory / "old.state"}, "ulimit -f 0; exec").status, 1);
    EXPECT_EQ(ReadText(directory / "old.state"), "what was there");
    EXPECT_EQ(directory.NumFiles(), 2u);
}

// Red if a reader of messages that has seen enough ends the rendering, with or without a part.
TEST_F(Files, AClosedPipeForMessagesDoesNotEndARendering) {
    const RunResult run = RunCommand({"sh", "-c", "exec \"$@\" 2>&1 | true", "sh", ORVANVERB_PROGRAM, "render",
                                      directory / "in.wav", "-o", directory / "out.wav"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(ReadSound(directory / "out.wav").samples.size(), 2u);
    EXPECT_EQ(directory.NumFiles(), 2u);
}

// Red if a rendering takes the place of another one unasked.
TEST_F(Files, AreReplacedOnlyByForce) {
    WriteText(directory / "out.wav", "what was there");
    const std::vector<std::string> call{ORVANVERB_PROGRAM, "render", directory / "in.wav", "-o", directory / "out.wav"};
    ExpectComplaint(RunCommand(call), 1, "--force");
    EXPECT_EQ(ReadText(directory / "out.wav"), "what was there");
    EXPECT_EQ(RunCommand(Joined(call, {"-f"})).status, 0);
    EXPECT_EQ(ReadSound(directory / "out.wav").samples.size(), 2u);
}

// Red if the end of a name doesn't tell the format, in small letters or large ones.
TEST_F(Files, NamesChooseTheirFormats) {
    const std::pair<char const*, int> formats[] = {
        {"a.WAV", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT}, {"a.flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24},
        {"a.aif", SF_FORMAT_AIFF | SF_FORMAT_FLOAT},  {"a.ogg", SF_FORMAT_OGG | SF_FORMAT_VORBIS},
        {"a.w64", SF_FORMAT_W64 | SF_FORMAT_FLOAT},   {"a.caf", SF_FORMAT_CAF | SF_FORMAT_FLOAT},
        {"plain", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT}};
    for (auto const& [name, format] : formats) {
        EXPECT_EQ(Render({"-o", directory / name}).status, 0) << name;
        EXPECT_EQ(ReadSound(directory / name).format, format) << name;
    }
    EXPECT_EQ(Render({"-o", directory / "x.y", "--format", "aiff"}).status, 0);
    EXPECT_EQ(ReadSound(directory / "x.y").format, SF_FORMAT_AIFF | SF_FORMAT_FLOAT);
}

// Red if a pipe on either side changes a sample, or needs a length that nobody knows yet.
TEST_F(Files, GoThroughPipes) {
    ASSERT_EQ(Render({"--tail", "0"}).status, 0);
    const Sound direct = ReadSound(directory / "out.wav");
    std::string streamed = ReadText(directory / "in.wav");
    streamed.replace(streamed.find("data") + 4, 4, "\xFF\xFF\xFF\xFF");
    WriteText(directory / "streamed.wav", streamed);
    const std::string program = ORVANVERB_PROGRAM " render ", out = " --tail 0 -o " + (directory / "piped.au");
    const std::string in = directory / "in.wav", fifo = directory / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (std::string const& call :
         {"cat " + in + " | " + program + "-" + out,
          "cat " + (directory / "streamed.wav") + " | " + program + "/dev/stdin" + out, program + "- <" + in + out,
          "cat " + in + " >" + fifo + " & " + program + fifo + out,
          program + in + " --tail 0 -o - | cat >" + (directory / "piped.au"),
          "cat " + fifo + " >" + (directory / "piped.au") + " & " + program + in + " --tail 0 -o " + fifo +
              " && wait"}) {
        std::filesystem::remove(directory / "piped.au");
        const RunResult run = RunCommand({"timeout", "20", "sh", "-c", call});
        EXPECT_EQ(run.status, 0) << call << "\n" << run.err;
        EXPECT_TRUE(ReadSound(directory / "piped.au").samples == direct.samples) << call;
    }
    const RunResult raw = RunProgram({"render", in, "-o", "-", "--format", "raw", "--tail", "0"});
    EXPECT_EQ(raw.out.size(), 2 * direct.NumFrames() * sizeof(float));
    ExpectComplaint(RunCommand({"sh", "-c", program + in + " --format wav -o - | cat"}), 0, "can't go through a pipe");
    ExpectComplaint(RunCommand({"sh", "-c", program + in + " -o /dev/full"}), 1, "/dev/full");
    // A reader that leaves is no failure to speak of, whether it goes before the header or amid the samples.
    for (char const* reader : {"true", "head -c 1000"}) {
        const std::string call = program + in + " --quiet --tail 100 -o - | " + reader + " | wc -c";
        EXPECT_EQ(RunCommand({"timeout", "20", "sh", "-c", call}).err, "") << reader;
    }
}

// Red if a command says that all went well when nothing of what it printed arrived.
TEST_F(Files, StandardOutputThatCannotBeWrittenIsAFailure) {
    for (char const* words : {"attributes", "attributes --json", "pan --list", "decode --list", "hrtf info kemar",
                              "--help", "render --help", "--version", "pan --method vbap2d --gains", "shell"}) {
        const std::string call = std::string("echo ':get tr0' | " ORVANVERB_PROGRAM " ") + words;
        ExpectComplaint(RunCommand({"sh", "-c", call + " >/dev/full"}), 1, "standard output");
        ExpectComplaint(RunCommand({"sh", "-c", call + " >&-"}), 1, "standard output");
    }
}

// Red if a program that waits for its input can only be killed.
TEST_F(Files, SignalsEndWhatWaits) {
    const std::string fifo = directory / "fifo";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    for (auto const& [name, number] : {std::pair{"INT", 2}, {"TERM", 15}, {"HUP", 1}}) {
        const std::string before =
            std::string("exec env --default-signal timeout --preserve-status -k 5 -s ") + name + " 0.2";
        EXPECT_EQ(RunProgram({"render", fifo, "-o", directory / "out.wav"}, before).status, 128 + number);
        const std::string shell = "sleep 3 | " + before.substr(5) + " " ORVANVERB_PROGRAM " shell; echo $?";
        EXPECT_EQ(RunCommand({"sh", "-c", shell}).out, std::to_string(128 + number) + "\n");
    }
}

// Red if a rendering that is broken off, or whose folder goes or may not be written, harms the old output, looks like a
// success, says nothing, or leaves its part beyond the next rendering. Each happens once there is a part with something
// in it.
TEST_F(Files, WhateverHappensTheOldOutputOrTheNewOneStands) {
    const std::string folder = directory / "folder", out = folder + "/out.wav";
    // Root writes anywhere, but for this.
    const std::string plain = geteuid() == 0 ? "setpriv --bounding-set=-dac_override,-dac_read_search " : "";
    const std::string start = plain + "env --default-signal " ORVANVERB_PROGRAM " ir --force -o " + out;
    const std::string begun =
        " & p=$!; until [ -s " + folder + "/out.wav.*part* ]; do kill -0 $p || exit 99; sleep 0.01; done; ";
    const auto killed = [&](char const* signal) {
        return start + " --tail 30000" + begun + "kill -" + signal + " $p; wait $p";
    };
    struct {
        std::string said, script;
        int status;
        bool stays;  // the old output
        int numParts;
    } const cases[] = {
        {"interrupted", killed("INT"), 128 + 2, true, 0},
        {"interrupted", killed("TERM"), 128 + 15, true, 0},
        {"interrupted", killed("HUP"), 128 + 1, true, 0},
        {"interrupted", killed("QUIT"), 128 + 3, true, 0},
        {"", killed("KILL"), 128 + 9, true, 1},
        {"dBFS", start + " --tail 0.1", 0, false, 0},  // takes the part away
        {out + ": can't be written", "chmod 555 " + folder + "; " + start, 1, true, 0},
        {out + ": can't be written", start + " --rate 8000 --tail 1000" + begun + "rm -r " + folder + "; wait $p", 1,
         false, 0},
    };
    for (auto const& [said, script, status, stays, numParts] : cases) {
        SCOPED_TRACE(script);
        std::filesystem::create_directory(folder);
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
        if (stays) WriteText(out, "what was there");
        const RunResult run = RunCommand({"bash", "-c", script});
        EXPECT_EQ(run.status, status) << run.err;
        ExpectContains(run.err, said);
        if (stays) {
            EXPECT_EQ(ReadText(out), "what was there");
        }
        if (status == 0) {
            EXPECT_EQ(ReadSound(out).samples.size(), 2u);
        }
        if (std::filesystem::exists(folder)) {
            EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1 + numParts);
        }
    }
}

/// Half of them to one name.
void RenderAtOnce(int number, TemporaryDirectory const& directory) {
    WriteSound(directory / "in.wav", MakeTone(440.0, 0.05, 48000));
    const std::string one = directory / "one.wav", many = directory / "many";
    const std::string start = ORVANVERB_PROGRAM " render " + (directory / "in.wav") + " --tail 0 --force -o ";
    const RunResult run =
        RunCommand({"bash", "-c",
                    "for i in $(seq " + std::to_string(number / 2) + "); do " + start + one + " & p=\"$p $!\"; " +
                        start + many + "$i.wav & p=\"$p $!\"; done; for i in $p; do wait $i || exit 3; done"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(directory.NumFiles(), 2u + static_cast<unsigned int>(number / 2));
    for (int i = 1; i <= number / 2; ++i) EXPECT_EQ(ReadText(many + std::to_string(i) + ".wav"), ReadText(one)) << i;
}

// Red if renderings at once take each other's parts.
TEST(Crowds, ManyRenderingsAtOnceLeaveWholeFiles) {
    RenderAtOnce(40, TemporaryDirectory());
}

TEST(Crowds, SLOW_TwoHundredRenderingsAtOnceLeaveWholeFiles) {
    RenderAtOnce(200, TemporaryDirectory());
}

// Red if a rendering without a descriptor to spare leaves half a file.
TEST(Crowds, NoDescriptorsLeaveWholeFiles) {
    const TemporaryDirectory directory;
    const std::string one = directory / "one.wav";
    WriteSound(directory / "in.wav", MakeTone(440.0, 0.05, 48000));
    RunWell({"render", directory / "in.wav", "--tail", "0", "-o", one});
    const std::string before = ReadText(one);
    bool failed = false;
    for (char const* const number : {"4", "5", "6", "7", "8"}) {  // some are taken by whoever runs the test
        const RunResult scarce = RunProgram({"render", directory / "in.wav", "--tail", "0", "-o", one},
                                            std::string("exec prlimit --nofile=") + number);
        failed = failed || scarce.status != 0;
        EXPECT_EQ(scarce.status == 0, scarce.err.find("dBFS") != std::string::npos) << scarce.err;
        EXPECT_EQ(ReadText(one), before);
        EXPECT_EQ(directory.NumFiles(), 2u);
    }
    EXPECT_TRUE(failed);
}

}  // namespace
