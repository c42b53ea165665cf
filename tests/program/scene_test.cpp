#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "orvanverb/common/text.h"
#include "pan/set_file.h"
#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

class Scenes : public testing::Test {
protected:
    Scenes() {
        WriteSound(directory / "a.wav", MakeTone(500.0, 0.5, 48000));
        WriteSound(directory / "b.wav", MakeTone(800.0, 0.4, 48000));
    }

    /// Renders both recordings, and returns the bytes of what came out.
    std::string Render(std::vector<std::string> const& more,
                       std::vector<std::string> const& inputs = {"a.wav", "b.wav"}) {
        std::vector<std::string> words{"render", "-o", directory / "out.wav", "--tail", "0.3"};
        for (std::string const& input : inputs) words.push_back(directory / input);
        RunWell(Joined(words, more));
        return ReadText(directory / "out.wav");
    }

    /// Expects that a rendering is refused with one line, before anything is written.
    void ExpectRefusal(std::vector<std::string> const& more, int status, std::string const& complaint) {
        WriteText(directory / "kept.wav", "an earlier rendering");
        ExpectComplaint(RunProgram(Joined({"render", directory / "a.wav", "-o", directory / "kept.wav"}, more)), status,
                        complaint);
        EXPECT_EQ(ReadText(directory / "kept.wav"), "an earlier rendering");
    }

    /// The loudest channel of the last rendering between two times [s].
    long Loudest(double from, double to) {
        const auto energies = Energies(ReadSound(directory / "out.wav"), static_cast<std::size_t>(from * 48000.0),
                                       static_cast<std::size_t>(to * 48000.0));
        return std::max_element(energies.begin(), energies.end()) - energies.begin();
    }

    TemporaryDirectory directory;
};

// Red if anything but the state decides what is heard: twelve channels spread their gains by chance, a longer early
// time in between leaves a longer delay line, and the source that is placed last has the early reflections.
TEST_F(Scenes, TheStateIsAllThatIsHeard) {
    WriteText(directory / "room", "early_end 110\nnuminternals 12\nair 1\n");
    const std::vector<std::string> room =
        Joined({"--preset", directory / "room"},
               program::SplitWords("--set early_end=50 --source 2 170 10 3 --source 1 -45 0 2 --speakers 5 @gain -3.3 "
                                   "@early width 77"));
    const std::string plain = Render(room);
    EXPECT_TRUE(plain == Render(Joined({"--save-state", directory / "hall.state"}, room)));
    EXPECT_TRUE(plain == Render({"--state", directory / "hall.state"}));
    EXPECT_FALSE(plain == Render({"--state", directory / "hall.state", "@gain", "-3.4"}));
    EXPECT_FALSE(Render({"--speakers", "2"}) == Render({"--speakers", "3"}));
}

// Red if a state forgets the ears or the vector size, looks for the ears in the wrong folder, or takes another file for
// them; or if a state of an earlier program, a list of attributes, can't be opened.
TEST_F(Scenes, AStateRemembersEarsAndVectorSize) {
    const auto writeEars = [this](float gain) {
        SetDescription set;
        set.positions = {{0.0f, 1.0f, 0.0f}, {1.0f, 0.0f, 0.0f}};
        WriteText(directory / "my ears.hrtf", SetFile(set, [=](std::uint32_t point, std::uint32_t ear) {
                      return gain + 0.1f * static_cast<float>(point + ear);
                  }));
    };
    writeEars(0.4f);
    WriteText(directory / "long.scene", "early start 500\nearly width 300\n");
    const std::string built = Render({});
    const std::string first = Render({"--hrtf", directory / "my ears.hrtf", "--vector", "256", "--scene",
                                      directory / "long.scene", "--save-state", directory / "ears.state"});
    EXPECT_FALSE(first == built);
    EXPECT_TRUE(first == Render({"--state", directory / "ears.state"}));
    EXPECT_FALSE(first == Render({"--state", directory / "ears.state", "--vector", "64"}));
    EXPECT_NE(ReadText(directory / "ears.state").find(" my ears.hrtf\n"), std::string::npos);

    WriteText(directory / "ears.scene", "hrtf my ears.hrtf\n0.2 clear\n");
    EXPECT_FALSE(built == Render({"--scene", directory / "ears.scene"}));
    WriteText(directory / "late.scene", "0.1 hrtf my ears.hrtf\n");
    EXPECT_FALSE(built == Render({"--scene", directory / "late.scene"}));
    WriteText(directory / "none.scene", "0.1 hrtf none.hrtf\n");
    ExpectRefusal({"--scene", directory / "none.scene"}, 1,
                  (directory / "none.scene") + ":1: " + (directory / "none.hrtf") + ": No such file or directory");

    writeEars(0.5f);
    ExpectRefusal({directory / "b.wav", "--state", directory / "ears.state"}, 1,
                  "has changed since the state was saved");

    WriteText(
        directory / "old.state",
        "# A state of orvanverb~.\ndirect -3. 0. 0. 0. 177. 5657.\nnuminternals 8\nnumsources 2\nnumspeakers 2\n");
    EXPECT_TRUE(Render({"--state", directory / "old.state"}) == Render({"--set", "direct_gain=-3"}));
}

TEST_F(Scenes, StatesOfAnotherShapeAreRefusedWhole) {
    Render({"--speakers", "6", "--save-state", directory / "six.state"}, {"a.wav"});
    const std::string good = ReadText(directory / "six.state");
    const auto refuse = [&](std::string const& from, std::string const& to, std::string const& complaint) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        WriteText(directory / "bad.state", text);
        ExpectRefusal({"--state", directory / "bad.state"}, 1, (directory / "bad.state") + complaint);
    };
    ExpectRefusal({"--state", directory / "six.state", "--speakers", "5"}, 1,
                  (directory / "six.state") + ": numspeakers 6: this rendering has 5");
    refuse("\ngain 0", "\ngain 0 1", ":10: gain: one value is expected, '1' is too many");
    refuse("\ngain 0", "\ngain long", ":10: gain: 'long' is no number");
    refuse("numinternals 8\n", "", ": no state");
    refuse("numsources 1", "numsources 2", ": sourcespositions: 2 positions are expected, not 1");
}

// A state that nothing came of must not take the place of one that was kept.
TEST_F(Scenes, AStateIsSavedOnlyIfTheRenderingSucceeds) {
    WriteText(directory / "kept.state", "kept");
    WriteText(directory / "bad.scene", "900 dance 1\n");
    ExpectRefusal({"--scene", directory / "bad.scene", "--save-state", directory / "kept.state"}, 1, "dance");
    EXPECT_EQ(ReadText(directory / "kept.state"), "kept");
}

// One number out of range had four fates. Red if options let one in, or if a scene says nothing, or says it each time.
TEST_F(Scenes, NumbersOutOfRangeAreRefusedInOptionsAndToldInScenes) {
    for (std::vector<std::string> const& words : {std::vector<std::string>{"--set", "early_width=300"},
                                                  {"@early_width", "300"},
                                                  {"--set", "direct_freq_low=5"}})
        ExpectRefusal(words, 2, words[1].starts_with("direct") ? "from 20 to 20000 Hz" : "from 10 to 180 degrees");
    WriteText(directory / "wide.scene",
              "0.1 early_width 300\n0.2 early_width 400\n0.3 source 1 xyz 1e30 1 0\n0.4 source 1 xyz 1 1e20 0\n");
    const RunResult run = RunWell({"render", directory / "a.wav", "-o", directory / "out.wav", "--scene",
                                   directory / "wide.scene", "--tail", "0.3"});
    const std::string at = directory / "wide.scene";
    ExpectContains(run.err,
                   at + ":1: warn: early_width: 300 is not from 10 to 180 degrees, the nearest is taken (said once)\n");
    EXPECT_EQ(run.err.find(at + ":2"), std::string::npos);
    ExpectContains(run.err, at + ":3: warn: positions are limited to 1e+06 m\n");
    EXPECT_EQ(run.err.find(at + ":4"), std::string::npos);
}

// Red if the front keeps quiet about what can't be meant: bands and times in reverse, a number too few or too many,
// lines that no longer happen; or if it says it each time.
TEST_F(Scenes, WhatCanNotBeMeantIsSaidOnce) {
    WriteText(
        directory / "late.scene",
        "0.1 tr0 2 4\n0.15 tr0 2 5\n0.2..9 source 1 azim 0 -> 90\n0.2 cluster_end 5\n0.25..0.3 infinite 0 -> 1 2\n"
        "12 mute\n");
    const std::vector<std::string> words =
        Joined({"render", directory / "a.wav", "-o", directory / "out.wav", "--scene", directory / "late.scene"},
               program::SplitWords("--set fl=5000 --set fh=2000 --set early_start=90"));
    const RunResult run = RunWell(Joined(words, {"--tail", "0.3"}));
    ExpectContains(run.err, "warning: fl 5000 lies above fh 2000 Hz\n");
    ExpectContains(run.err, "warning: early_start 90 lies above early_end 39.71 ms\n");
    const std::size_t later = run.err.find("at 0.20 s: warning: cluster_start 42.47 lies above cluster_end 5 ms\n");
    EXPECT_NE(later, std::string::npos) << run.err;
    EXPECT_EQ(run.err.rfind("cluster_start"), later + std::string("at 0.20 s: warning: ").size()) << run.err;
    const std::string at = directory / "late.scene";
    for (std::string const& line :
         {at + ":1: warn: tr0: only the first value counts, not 4\n", at + ":5: warn: infinite: only the first"}) {
        ExpectContains(run.err, line);
        EXPECT_EQ(run.err.find(line), run.err.rfind(line)) << run.err;
    }
    EXPECT_EQ(run.err.find(":2: "), std::string::npos) << run.err;
    ExpectContains(run.err, "late.scene: 2 lines are due behind the end, the last at 12.00 s");
    EXPECT_EQ(RunProgram(Joined(words, {"--tail", "12"})).err.find("behind the end"), std::string::npos);
}

// A message acts from the first sample of the vector in which it falls due, and not one vector earlier or later.
TEST_F(Scenes, MessagesTakeEffectAtTheirVector) {
    for (auto const& [seconds, vector, firstSilent] :
         {std::tuple{"0.1", "64", 4800u}, {"0.1012", "64", 4800u}, {"0.1014", "64", 4864u}, {"0.1014", "256", 4864u}}) {
        WriteText(directory / "mute.scene", std::string("# stop\n") + seconds + " mute 1\n");
        Render({"--scene", directory / "mute.scene", "--vector", vector}, {"a.wav"});
        const Sound out = ReadSound(directory / "out.wav");
        double before = 0.0;
        for (auto const& channel : out.samples) {
            for (std::size_t i = firstSilent - 64; i < firstSilent; ++i)
                before += std::fabs(static_cast<double>(channel[i]));
            EXPECT_TRUE(std::all_of(channel.begin() + firstSilent, channel.end(),
                                    [](float x) { return !(std::fabs(x) > 0.0f); }));
        }
        EXPECT_GT(before, 0.1) << seconds << " " << vector;
    }
}

// Red if a frozen room bangs when its decay jumps.
TEST_F(Scenes, AFrozenTailIsSilentOnceItsDecayJumps) {
    WriteText(directory / "jump.scene", "0.7 tr0 2.0\n");
    Render({"@infinite", "1", "@air", "1", "@tr0", "0.1", "--scene", directory / "jump.scene"}, {"a.wav"});
    const std::vector<double> energies = Energies(ReadSound(directory / "out.wav"), 34600, 38400);
    EXPECT_LT(*std::max_element(energies.begin(), energies.end()), 1e-12);
}

// One voice walks from the front left to the rear right; lines in any order, and one without a time.
TEST_F(Scenes, AVoiceMoves) {
    WriteText(
        directory / "walk.scene",
        "0.3 source 1 azim 135  # behind\n0.15 source 1 azim++ 90\nsource 1 ade -45 1 0\nroom -60 0 0 0 177 5657\n");
    Render({"--scene", directory / "walk.scene", "--speakers", "4"}, {"a.wav"});
    EXPECT_EQ(Loudest(0.05, 0.14), 0);
    EXPECT_EQ(Loudest(0.23, 0.29), 1);
    EXPECT_EQ(Loudest(0.38, 0.48), 2);
}

// A movement is what one would write step by step; the short way from 170 to -170 degrees leads over 180.
TEST_F(Scenes, MovementsGoEvenlyFromNumberToNumber) {
    std::string steps = "source 1 ade 170 2 0\n";
    for (int i = 0; i <= 10; ++i)
        steps += std::to_string(0.1 + 0.02 * i) + " source 1 azim " + std::to_string(170 + 2 * i) + "\n";
    WriteText(directory / "steps.scene", steps);
    WriteText(directory / "long.scene", "source 1 ade 170 2 0\n0.1..0.3 source 1 azim 170 -> 190\n");
    WriteText(directory / "short.scene", "source 1 ade 170 2 0\n0:00.1..0:00.3 source 1 azim 170 ~> -170\n");
    WriteText(directory / "still.scene", "source 1 ade 170 2 0\n");
    const std::string expected = Render({"--scene", directory / "steps.scene", "--speakers", "4"});
    EXPECT_FALSE(expected == Render({"--scene", directory / "still.scene", "--speakers", "4"}));
    EXPECT_TRUE(expected == Render({"--scene", directory / "long.scene", "--speakers", "4"}));
    EXPECT_TRUE(expected == Render({"--scene", directory / "short.scene", "--speakers", "4"}));
}

// Red if a fault hides those behind it, if a movement's end isn't looked at, or if the summary is wrong.
TEST_F(Scenes, ACheckTellsEverythingThatIsWrong) {
    WriteText(directory / "bad.scene",
              "source 1 ade 0 2 0\n1:70 mute 1\n2..1 source 1 azim 0 -> 3\n1..2 source 1 dance -> 3\n"
              "3 source 1 azim 0 -> 3\n0..1 early_width 20 -> 300\n9 dance\n10 mute\n11 sorce 1 az 3\n12 "
              "generatexml\n13..14 early_width 300 1 -> 2\n");
    const RunResult bad = RunProgram({"scene", "check", directory / "bad.scene"});
    EXPECT_EQ(bad.status, 1);
    const std::string at = directory / "bad.scene";
    const std::string lines =
        at + ":2: '1:70' is no time: seconds or m:s are expected, or two with .. between\n" + at +
        ":3: 2..1: the second time must be the later one\n" + at +
        ":4: a movement goes from a number to a number, as in 0 -> 90\n" + at +
        ":5: a movement needs two times, as in 0..16\n" + at +
        ":6: warn: early_width: 300 is not from 10 to 180 degrees, the nearest is taken (said once)\n" + at +
        ":7: orvanverb~: doesn't understand \"dance\"\n" + at + ":8: warn: mute: a value is missing, 0 or 1\n" + at +
        ":9: orvanverb~: doesn't understand \"sorce\" (did you mean source?)\n" + at +
        ":10: generatexml: writes a file; orvanverb reference does it\n" + at +
        ":11: warn: early_width: only the first value counts, not 1\n" + at +
        ":11: warn: early_width: 300 is not from 10 to 180 degrees, the nearest is taken (said once)\n" + at +
        ":11: warn: early_width: only the first value counts, not 2\n";
    EXPECT_EQ(bad.out, lines);
    WriteText(directory / "good.scene", "0..1:02.5 source 3 azim 0 -> 300\n1 tr0 2\n");
    const RunResult good = RunWell({"scene", "check", directory / "good.scene"});
    EXPECT_EQ(good.out, (directory / "good.scene") + ": 2 lines with a time, until 1:02.5; 3 sources\n");
    EXPECT_EQ(RunProgram({"scene", "check", directory / "good.scene", "--sources", "2"}).status, 1);
    const RunResult json = RunProgram({"scene", "check", directory / "good.scene", "--sources", "2", "--json"});
    ExpectContains(json.out, "\"timed_lines\": 2, \"end_s\": 62.500, \"sources\": 2, \"faults\": [\"/");
    RunWell({"scene", "plot", directory / "good.scene", "-o", directory / "plan.svg"});
    const std::string plan = ReadText(directory / "plan.svg");
    ExpectContains(plan, "source 3");
    // The same from a pipe, which can be read once: all but the title.
    const RunResult piped = RunCommand({"sh", "-c", "cat \"$1\" | \"$0\" scene plot - -o \"$2\" --force",
                                        ORVANVERB_PROGRAM, directory / "good.scene", directory / "plan.svg"});
    ASSERT_EQ(piped.status, 0) << piped.err;
    EXPECT_EQ(ReadText(directory / "plan.svg").size() + std::string("good.scene").size(), plan.size() + 1);
}

// Red if a rendering keeps quiet about loudspeakers that can't play, or tells of places that they pass; or if a source
// that rises to above the listener falls behind.
TEST_F(Scenes, LayoutsAreLookedAtWhenTheyHaveChanged) {
    WriteText(directory / "layout.scene",
              "speaker 1 az 10\nspeaker 1 az -60\nsource 1 azim 60\nsource 1 elev 90\nroom -60 0 0 0 177 5657\n"
              "0.1 speakers az 0 0 0\n0.3 speakers az -60 60 180\n");
    const RunResult run = RunProgram({"render", directory / "a.wav", "-o", directory / "out.wav", "--speakers", "3",
                                      "--scene", directory / "layout.scene", "--tail", "0"});
    EXPECT_TRUE(run.err.starts_with("at 0.10 s: warning: loudspeakers 1 and 2 stand at one azimuth")) << run.err;
    EXPECT_EQ(run.err.find("-60"), run.err.find("(azimuth -60)") + 9) << run.err;
    EXPECT_EQ(Loudest(0.0, 0.1), 1);
}

TEST_F(Scenes, WrongLinesAreNamedBeforeAnythingIsRendered) {
    const std::pair<char const*, char const*> cases[] = {
        {"1.5", "a message is expected behind the time"},
        {"-1 mute 1", "a time of 0 or more is expected, not -1"},
        {"3 dance 1", "orvanverb~: doesn't understand \"dance\""},
        {"900 source 2 az 30", "invalid source index 2"},
        {"2 tr0 long", "tr0: a number is expected, not \"long\""},
    };
    for (auto const& [line, complaint] : cases) {
        WriteText(directory / "bad.scene", std::string("# walk\nsource 1 az 10\n\n") + line + "\n5 mute 0\n");
        ExpectRefusal({"--scene", directory / "bad.scene"}, 1, (directory / "bad.scene") + ":4: " + complaint + "\n");
    }
    ExpectRefusal({"--scene", directory / "none"}, 1, directory / "none");
}

// The same room by attributes, by --set and by messages; -45 degrees is front left by each way.
TEST_F(Scenes, AttributesArriveWhereverTheyStand) {
    const std::string set = Render(
        {"--set", "tr0=0.7", "--set", "gain=-3", "--speakers", "4", "--source", "1", "-45", "0", "1"}, {"a.wav"});
    EXPECT_EQ(Loudest(0.05, 0.45), 0);
    EXPECT_TRUE(set == Render({"@tr0", "0.7", "@gain", "-3", "@numspeakers", "4", "--source", "1", "-45", "0", "1"},
                              {"a.wav"}));
    Render({"@sourcespositions", "-0.7071", "0.7071", "0", "--speakers", "4"}, {"a.wav"});
    EXPECT_EQ(Loudest(0.05, 0.4), 0);
    ExpectRefusal({"@bogus", "1"}, 2, "@bogus: orvanverb~ has no such attribute");
    ExpectRefusal({"@gain", "loud"}, 2, "@gain: gain: a number is expected");
    ExpectRefusal({"@numsources", "2"}, 2, "@numsources 2");
    ExpectRefusal({"@numspeakers", "4", "--speakers", "5"}, 2, "@numspeakers 4: --speakers gives 5");
    ExpectRefusal({"@numinternals", "many"}, 2, "@numinternals");
}

}  // namespace
