#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>
#include <utility>

#include "common/hosted_room.h"
#include "patcher/api.h"
#include "plugins/pd_patch.h"
#include "program/sound_files.h"
#include "support/signals.h"

namespace {

/// A message and the sample before which it is due; below 0: before audio.
struct Event {
    long sample;
    std::string message;
    std::string receiver = "room";
};

class InPd : public testing::Test {
protected:
    RunResult Open(PdPatch const& patch, std::vector<std::string> const& options = {}, std::string const& before = {}) {
        WriteText(directory / "test.pd", patch.Text());
        RunResult run = RunPd(directory / "test.pd", options, before);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err.find("couldn't create"), std::string::npos) << run.err;
        return run;
    }

    /// Opens a patch with one object behind [r room] and tells it messages. Answers with what Pd's console says.
    std::string Tell(std::string const& words, std::vector<std::string> const& messages) {
        PdPatch patch;
        patch.Connect(patch.Object("r room"), 0, patch.Object("orvanverb~ " + words), 0);
        std::string script;
        for (std::string const& message : messages) script.append("\\; room ").append(message).append(" ");
        patch.At(0.0, script + "\\; pd quit");
        return Open(patch).err;
    }

    static int NumSpeakers(std::string const& words) {
        const auto at = words.find("@numspeakers ");
        return at == words.npos ? 6 : std::stoi(words.substr(at + 13));
    }

    TemporaryDirectory directory;
};

/// Plays a file through the object in Pd and records what comes out.
class PlayingInPd : public InPd {
protected:
    /// @param block  the object that chooses the block size of the object's subpatch
    Sound Play(Sound const& sound, std::string const& words, std::vector<Event> const& events,
               std::string const& block = "block~ 64", int upsampling = 1) {
        const auto numSources = sound.samples.size(), numSpeakers = static_cast<std::size_t>(NumSpeakers(words));
        WriteSound(directory / "in.wav", sound);
        std::string inputs, outputs;
        for (std::size_t i = 0; i < numSources; ++i) inputs.append(" in").append(std::to_string(i));
        for (std::size_t i = 0; i < numSpeakers; ++i) outputs.append(" out").append(std::to_string(i));

        PdPatch inner;
        const int receive = inner.Object("r room");
        const int room = inner.Object("orvanverb~ " + words);
        inner.Connect(inner.Object("r block"), 0, inner.Object(block), 0);
        inner.Connect(receive, 0, room, 0);
        const int go = inner.Object("r go");
        for (std::size_t i = 0; i < numSources; ++i) {
            const int play = inner.Object("tabplay~ in" + std::to_string(i));
            inner.Connect(go, 0, play, 0);
            inner.Connect(play, 0, room, static_cast<int>(i));
        }
        for (std::size_t i = 0; i < numSpeakers; ++i) {
            const int record = inner.Object("tabwrite~ out" + std::to_string(i));
            inner.Connect(go, 0, record, 0);
            inner.Connect(room, static_cast<int>(i), record, 0);
        }
        PdPatch patch;
        patch.Subpatch(inner, "inner");
        patch.Subpatch(PdPatch(), "yard");  // for edits elsewhere
        const std::string length = std::to_string(sound.NumFrames());
        for (std::size_t i = 0; i < numSources; ++i) patch.Object("array define in" + std::to_string(i) + " " + length);
        for (std::size_t i = 0; i < numSpeakers; ++i)
            patch.Object("array define out" + std::to_string(i) + " " + length);
        const int file = patch.Object("soundfiler");
        patch.Connect(patch.Object("r file"), 0, file, 0);

        std::string script = "\\; file read " + (directory / "in.wav") + inputs;
        for (auto const& [sample, message, receiver] : events)
            if (sample < 0) script.append(" \\; ").append(receiver).append(" ").append(message);
        patch.At(0.0, script + " \\; go bang \\; pd dsp 1");
        const auto at = [&](long sample, std::string const& message) {
            patch.At(1000.0 * static_cast<double>(sample) / sound.samplerate, message);
        };
        for (auto const& [sample, message, receiver] : events)
            if (sample >= 0) at(sample, std::string("\\; ").append(receiver).append(" ").append(message));
        at(static_cast<long>(sound.NumFrames()) + 16384,
           "\\; file write -wave -bytes 4 " + (directory / "out.wav") + outputs + " \\; pd quit");
        console = Open(patch, {"-r", std::to_string(sound.samplerate / upsampling)}).err;
        return ReadSound(directory / "out.wav");
    }

    std::string console;  // what it said
};

}  // namespace

// The object in Pd, in its signal chain and driven by its messages, against the program: the same to the last bit. Red
// if a message comes a vector late, a channel is swapped, a block is cut, or anything is done to the sound on the way.
TEST_F(PlayingInPd, EqualsTheProgramSampleForSample) {
    const std::vector<Event> scene{{-1, "tr0 2.5"},
                                   {-1, "early 0 0 0 -6 177 5657"},
                                   {-1, "speaker 1 ade -40 2 0"},
                                   {-1, "source 1 ade -45 2 0"},
                                   {-1, "source 2 xyz 0.3 -1.25 0.5"},
                                   {47 * 256 + 8, "source 1 azim++ 25.5"},
                                   {75 * 256 + 8, "reverb gain -3"},
                                   {94 * 256 + 8, "source 2 ad 100 4"}};
    // Pd looks for messages every 64 samples, and computes a larger block when the first 64 of it are due.
    struct Case {
        int samplerate, blockSize, upsampling;
        char const* speakers;
    };
    for (auto const& [samplerate, blockSize, upsampling, speakers] :
         {Case{48000, 64, 1, "8"}, {44100, 256, 1, "2"}, {32000, 16, 1, "5"}, {64000, 64, 2, "3"}}) {
        // The program lets the room settle over a quarter of a second of silence before a recording begins.
        const auto vector = static_cast<std::size_t>(blockSize);
        std::size_t settle = 0;
        for (double seconds = 0.0; seconds < 0.25; seconds += static_cast<double>(blockSize) / samplerate)
            settle += vector;
        const std::size_t length = static_cast<std::size_t>(samplerate) * 4 / 5 / vector * vector;

        Sound dry;
        dry.samplerate = samplerate;
        std::string text;
        for (unsigned int source = 0; source < 2; ++source) dry.samples.push_back(MakeNoise(source + 1, length, 0.5f));
        WriteSound(directory / "dry.wav", dry);
        std::vector<Event> late;
        for (Event const& event : scene) {
            const bool timed = event.sample >= 0;
            if (timed) text.append(std::to_string(static_cast<double>(event.sample) / samplerate)).append(" ");
            text.append(event.message).append("\n");
            late.push_back({event.sample + (timed ? static_cast<long>(settle) : 0), event.message});
        }
        WriteText(directory / "test.scene", text);
        RunWell({"render", directory / "dry.wav", "-o", directory / "wet.wav", "--speakers", speakers, "--scene",
                 directory / "test.scene", "--vector", std::to_string(blockSize), "--tail", "0"});
        const Sound expected = ReadSound(directory / "wet.wav");

        Sound padded = dry;
        for (std::vector<float>& channel : padded.samples) channel.insert(channel.begin(), settle, 0.0f);
        const std::string block = "block~ " + std::to_string(blockSize) + " 1 " + std::to_string(upsampling);
        const Sound played =
            Play(padded, std::string("@numsources 2 @numspeakers ") + speakers, late, block, upsampling);
        EXPECT_EQ(console.find("error"), std::string::npos) << console;
        ASSERT_EQ(played.samples.size(), expected.samples.size());
        ASSERT_EQ(played.NumFrames(), settle + length);
        for (std::size_t c = 0; c < played.samples.size(); ++c) {
            EXPECT_GT(EnergyOf(expected.samples[c]), 1.0);
            const std::span<float const> heard = std::span(played.samples[c]).subspan(settle);
            const auto differs = std::mismatch(heard.begin(), heard.end(), expected.samples[c].begin()).first;
            EXPECT_EQ(static_cast<std::size_t>(differs - heard.begin()), length) << speakers << " speakers, " << c;
        }
    }
}

// Pd compiles its signal chain anew whenever a patch is edited. Red if a tail is cut by that, or if the old tail comes
// back when audio is switched off and on.
TEST_F(PlayingInPd, TheRoomSoundsOnThroughEditsAndIsSilentAtANewStart) {
    Sound clap;
    clap.samples.push_back(MakeImpulse(36000, 14400));
    const std::string words = "@numsources 1 @numspeakers 4";
    const Sound plain = Play(clap, words, {});
    constexpr long edit = 24000;
    EXPECT_GT(EnergyOf(std::span(plain.samples[0]).subspan(edit)), 1e-4);

    const Sound edited = Play(clap, words, {{edit, "obj 10 10 osc~", "pd-yard"}, {edit, "clear", "pd-yard"}});
    EXPECT_TRUE(edited.samples == plain.samples);
    const Sound paused =
        Play(clap, words, {{-1, "1", "block"}, {edit, "0", "block"}, {edit + 6400, "1", "block"}}, "switch~ 64");
    EXPECT_TRUE(paused.samples == plain.samples);
    const Sound restarted = Play(clap, words, {{edit, "dsp 0", "pd"}, {edit + 6400, "dsp 1", "pd"}});
    EXPECT_GT(EnergyOf(std::span(restarted.samples[0]).first(edit)), 1e-4);
    EXPECT_EQ(EnergyOf(std::span(restarted.samples[0]).subspan(edit + 64)), 0.0);
}

// Red if one bad sample silences the room for good, or if it goes by without a word.
TEST_F(PlayingInPd, BadSamplesStayOutAndAreReportedOnce) {
    Sound bad;
    bad.samples.assign(1, MakeNoise(1u, 120000, 0.5f));
    for (const std::size_t at : {20000u, 20001u, 20002u}) bad.samples[0][at] = std::nanf("");
    bad.samples[0][100000] = std::numeric_limits<float>::infinity();
    Sound good = bad;
    for (float& sample : good.samples[0]) sample = std::isfinite(sample) ? sample : 0.0f;
    const Sound out = Play(bad, "@numsources 1 @numspeakers 2", {});
    const std::string line = "error: orvanverb~: 3 input samples weren't finite; 0 went into the room instead";
    ExpectContains(console, line);
    EXPECT_EQ(console.find(line), console.rfind("error")) << console;
    EXPECT_TRUE(out.samples == Play(good, "@numsources 1 @numspeakers 2", {}).samples);

    std::fill_n(good.samples[0].begin() + 20000, 200, 9e5f);
    Play(good, "@numsources 1 @numspeakers 4 @sourcespositions 0 0.3 0", {});
    const std::size_t said = console.find(" output samples were beyond 120 dB; the room was emptied");
    EXPECT_NE(said, std::string::npos) << console;
    EXPECT_EQ(said, console.rfind(" output samples were")) << console;
}

// Pd knows one kind of number; the object wants longs for indices.
TEST_F(InPd, MessagesReachTheObjectAndItsLinesTheConsole) {
    EXPECT_EQ(Tell("@numsources 2 @numspeakers 3 @tr0 2 @wurst 1",
                   {"source 2 ade 90 2 0", "postattributes sourcespositions", "postattributes tr0", "tr0 2.5",
                    "postattributes tr0", "tr0 20", "reverb tr0 30", "mute 1", "postdspstatus", "source 3 ade 1 1 1",
                    "direct 1 2.5 3", "setstate 1 2 3", "wurst 1", "bang", "1 2 3"}),
              "verbose(2): warning: orvanverb~: \"wurst\" is not an attribute that can be set\n"
              "orvanverb~: sourcespositions : -0.500000 0.866025 0.000000 2.000000 0.000000 0.000000 \n"
              "orvanverb~: tr0 : 2.000000 \n"
              "orvanverb~: tr0 : 2.500000 \n"
              "verbose(2): warning: orvanverb~: tr0: 20 is not from 0.1 to 10 s, the nearest is taken (said "
              "once)\n"
              "orvanverb~: dsp processing is muted\n"
              "error: orvanverb~: invalid source index 3\n"
              "error: orvanverb~: invalid direct parameters : 1 2.500000 3 \n"
              "error: orvanverb~: setvalueof error (received 3 atoms. 72 atoms were expected)\n"
              "error: orvanverb~: doesn't understand \"wurst\"\n"
              "error: orvanverb~: doesn't understand \"bang\"\n"
              "error: orvanverb~: doesn't understand \"list\"\n");
}

// Red if a word that does nothing goes by without a remark, if one is made twice, or if sizes by their place aren't
// taken.
TEST_F(InPd, SaysWhatMeansNothing) {
    constexpr char usage[] = " [orvanverb~ SOURCES LOUDSPEAKERS @NAME VALUE...]\n";
    const auto warning = [](std::string const& text) { return "verbose(2): warning: orvanverb~: " + text; };
    EXPECT_EQ(Tell("2 8 3 hello -numsources 4 @tr0 abc @trl 99 @numinternals 1 @trm",
                   {"postattributes numsources", "postattributes numspeakers", "tr0", "tr0", "source 1 ade 30 1e9 0"}),
              warning("trl: 99 is not from 0.1 to 10, the nearest is taken (said once)\n") +
                  "error: orvanverb~: tr0: a number is expected, not \"abc\"\n" +
                  warning("a room of 2 internal channels may miss tr0 1.995 s by more than 5 % at modaldensity 0.86; 4 "
                          "keep it\n") +
                  warning("3 means nothing here" + std::string(usage)) +
                  warning("hello means nothing here" + std::string(usage)) +
                  warning("-numsources means nothing here, did you mean @numsources 4?" + std::string(usage)) +
                  warning("numinternals: 1 is not from 2 to 16, the nearest is taken\n") +
                  warning("@trm has no value\n") + "orvanverb~: numsources : 2 \norvanverb~: numspeakers : 8 \n" +
                  warning("tr0: a value is missing, a number from 0.1 to 10 s\n") +
                  warning("positions are limited to 1e+06 m\n"));
}

// Red if the object is not there in a Pd without cords of several channels, or says nothing of it.
TEST_F(InPd, HasACordForEachWherePdKnowsNoOthers) {
    const std::string plain = "orvanverb~: numspeakers : 2 \n",
                      said = Tell("1 2 @multichannel 1", {"postattributes numspeakers"});
    if (said == plain) return;  // Pd 0.54 and newer
    EXPECT_EQ(
        said,
        "verbose(2): warning: orvanverb~: @multichannel needs Pd 0.54 or newer: here each source and loudspeaker has "
        "its own cord\n" +
            plain);
}

// Red if Pd keeps quiet about loudspeakers that can't play, or tells of places that they pass on the way there; or if a
// source that rises to above the listener falls behind.
TEST_F(InPd, LooksAtTheRoomWhenAllIsSaid) {
    PdPatch patch;
    const int room = patch.Object("orvanverb~ 1 3");
    patch.Connect(patch.Object("r room"), 0, room, 0);
    patch.At(0.0,
             "\\; room speaker 1 az 10 \\; room speaker 1 az -60 \\; room fl 9000 \\; room source 1 azim 60 \\; room "
             "source 1 elev 90 \\; room postattributes sourcespositions");
    patch.At(10.0, "\\; room speakers az -60 60 60");
    patch.At(20.0, "\\; room speakers az -60 60 60 \\; room tr0 2");
    patch.At(30.0, "\\; pd quit");
    const std::string said = Open(patch).err;
    EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 4) << said;
    EXPECT_TRUE(said.starts_with("orvanverb~: sourcespositions : 0.000002 0.000001 ")) << said;
    ExpectContains(said, "warning: orvanverb~: fl 9000 lies above fh 8000 Hz\n");
    ExpectContains(said, "warning: orvanverb~: loudspeakers 2 and 3 stand at one azimuth");
}

// Red if a value doesn't come out at the right, if a room from a file leaves something of the one before, or if what is
// no room is taken for one, or shown.
TEST_F(InPd, GivesValuesAndTakesRooms) {
    WriteText(directory / "mine.room", "# a room\ntr0 3.5\ndirect 0 1 2 3 400 5000\n");
    WriteText(directory / "bad.room", "tr0 3\ntro 4\n");
    WriteText(directory / "binary.room", "\x1b[31m\xeb\xd7\n");
    WriteText(directory / "latin.room", "k\xf6ln 2\n");
    std::filesystem::create_directory(directory / "folder.room");
    PdPatch patch;
    const int room = patch.Object("orvanverb~ 1 2 @gain 6");
    patch.Connect(patch.Object("r room"), 0, room, 0);
    patch.Connect(room, 2, patch.Object("print"), 0);
    patch.At(
        0.0,
        "\\; room get gain \\; room preset mine \\; room get gain \\; room get direct \\; room get direct_gain_low "
        "\\; room preset bad \\; room get tr0 \\; room preset hall \\; room get tr0 \\; room get tro \\; room preset "
        "binary \\; room preset latin \\; room preset folder "
        "\\; room preset hal \\; room get tr0 \\; pd quit");
    std::string said = Open(patch).err;
    const std::size_t list = said.find("; there are: numinternals ");  // all names
    ASSERT_NE(list, said.npos) << said;
    said.erase(list, said.find('\n', list) - list);
    const std::string error = "error: orvanverb~: ", there = "; preset alone lists those that there are\n";
    EXPECT_EQ(said, "print: gain 6\nprint: gain 0\nprint: direct 0 1 2 3 400 5000\nprint: direct_gain_low 1\n" + error +
                        (directory / "bad.room") +
                        ":2: 'tro' is no control (did you mean tr0?)\nprint: tr0 3.5\nprint: tr0 2.1\n" + error +
                        "get: there is no tro (did you mean tr0?); print shows all names\n" + error +
                        (directory / "binary.room") + ":1: is no text\n" + error + (directory / "latin.room") +
                        ":1: is no text\n" + error + "there is no room 'folder'" + there + error +
                        "there is no room 'hal' (did you mean hall?)" + there + "print: tr0 2.1\n");
}

// Red if a question has no answer, or the wrong one, or if a word that is missing or too many goes by.
TEST_F(InPd, AnswersQuestionsAndSaysWhatIsMissing) {
    WriteText(directory / "small.room", "numinternals 4\ntr0 3.5\n");
    std::string said = Tell("1 2", {"help tr0", "help room", "help tro", "get", "getstate 1", "getstate 1", "print now",
                                    "orientation", "orientation 1 2 3 4", "orientation 1 left", "orientation 1", "hrtf",
                                    "setstate", "preset small", "preset small", "preset", "help"});
    for (auto const& [from, to] : {std::pair{"room_gain: level", "error: "},
                                   {"orvanverb~: found ", "error: "},
                                   {"orvanverb~: preset: ", "messages of"}}) {
        const std::size_t begin = said.find(from), end = said.find(to, begin);
        ASSERT_NE(end, said.npos) << said;
        said.erase(begin, end - begin);
    }
    const std::string error = "error: orvanverb~: ", warning = "verbose(2): warning: orvanverb~: ",
                      turn = error + "orientation: expected YAW [PITCH [ROLL]] in degrees\n";
    EXPECT_EQ(said.substr(0, said.find("messages of")),
              "tr0: time in which the late field falls by 60 dB; from 0.1 to 10 s, usually 1.995\n" + error +
                  "help: there is no control tro (did you mean tr0?); print shows all of them\n" + error +
                  "get: a name is expected behind it\n" + warning + "getstate: only the word itself counts, not 1\n" +
                  warning + "print: only the word itself counts, not now\n" + turn + turn + turn + error +
                  "hrtf: a file is expected behind it\n" + error +
                  "setstate: a state is expected behind it, from getstate\n" + warning +
                  "small was made for @numinternals 4, here are 8\n");
}

/// What a patch file keeps of a state: the text behind #A, line by line.
std::string SavedState(std::string const& file) {
    const std::string mark = "#A setstate ";
    const auto begin = file.find(mark);
    if (begin == file.npos) return {};
    EXPECT_EQ(file.find(mark, begin + 1), file.npos) << "two states";
    std::istringstream words(file.substr(begin + mark.size(), file.find(';', begin) - begin - mark.size()));
    std::string text;
    for (std::string word; words >> word;)
        text.append(word == "/" ? "\n" : (text.empty() || text.back() == '\n' ? "" : " ") + word);
    return text + "\n";
}

// Red if a state loses a bit on the way into the file and back, reaches another object, or is saved unasked.
TEST_F(InPd, StatesAreKeptInThePatchFile) {
    const std::string words = "@numsources 2 @numspeakers 3";
    const std::vector<std::string> messages{"source 1 ade 33.3 2.2 11.1", "source 2 xyz 1e-05 -1.2345678 -1e-46",
                                            "tr0 3.1415927", "early 1 2 3 4 555.55 6666.666"};
    PdPatch patch;
    patch.Connect(patch.Object("r other"), 0, patch.Object("orvanverb~ " + words), 0);
    patch.Connect(patch.Object("r room"), 0, patch.Object("orvanverb~ @autosave 1 " + words), 0);
    patch.Object("orvanverb~ @autosave 0 " + words);
    WriteText(directory / "patch.pd", patch.Text());
    const auto save = [this](std::string const& from, std::string const& script, std::string const& to) {
        PdPatch control;
        control.At(0.0, script + " \\; pd-" + from + " savetofile " + to + " " + (directory / "") + " \\; pd quit");
        const RunResult run = Open(control, {"-open", directory / from});
        EXPECT_EQ(run.err.find("error"), std::string::npos) << run.err;
        return ReadText(directory / to);
    };
    std::string script;
    plugin::HostedRoom room(max::ParseAtoms(words), {});
    for (std::string const& message : messages) {
        script.append(" \\; room ").append(message);
        const std::vector<max::t_atom> atoms = max::ParseAtoms(message);
        room.Send(max::atom_getsym(atoms.data())->s_name, {atoms.begin() + 1, atoms.end()});
    }
    script.append(" \\; room orientation 30 -10.5");
    room.SetOrientation(30.0f, -10.5f, 0.0f);
    const std::string saved = save("patch.pd", script, "saved.pd");
    EXPECT_EQ(SavedState(saved), room.NamedState().Text());
    ExpectContains(saved, " -0 ");  // a number of its own, which must come back as it is
    EXPECT_EQ(save("saved.pd", "", "again.pd"), saved);

    // A patch of before, with the flat list.
    std::string flat;
    for (max::t_atom const& atom : room.State()) flat.append(" ").append(max::AtomText(atom));
    const auto begin = saved.find("#A setstate"), end = saved.find(';', begin);
    WriteText(directory / "flat.pd", std::string(saved).replace(begin, end - begin, "#A setstate" + flat));
    EXPECT_NE(save("flat.pd", "", "new.pd").find("#A setstate orvanverb-state 1 / numsources 2 "), std::string::npos);

    // Ears, by a name with a blank, come back with the patch.
    std::filesystem::copy_file(ORVAN_SET, directory / "my ears.coll");
    PdPatch headphones;
    headphones.Connect(headphones.Object("r room"), 0,
                       headphones.Object("orvanverb~ @autosave 1 @numsources 1 @numspeakers 2"), 0);
    WriteText(directory / "ears.pd", headphones.Text());
    const std::string kept = save("ears.pd", "\\; room hrtf my ears.coll", "kept.pd");
    ExpectContains(kept, "my\\ ears.coll");
    EXPECT_EQ(save("kept.pd", "", "again.pd"), kept);
    EXPECT_NE(Tell("@numsources 1 @numspeakers 2", {"hrtf nothing.coll"}).find("nothing.coll: No such file"),
              std::string::npos);
}

// Red if a state that a list object keeps doesn't bring the object back to where it was.
TEST_F(InPd, StatesGoThroughStorageObjects) {
    PdPatch patch;
    const int room = patch.Object("orvanverb~ @numsources 1 @numspeakers 2");
    const int order = patch.Object("t a a");
    const int store = patch.Object("list prepend");
    patch.Connect(patch.Object("r room"), 0, room, 0);
    patch.Connect(room, 2, order, 0);
    patch.Connect(order, 0, patch.Object("print"), 0);
    patch.Connect(order, 1, store, 1);  // keeps the list
    patch.Connect(patch.Object("r recall"), 0, store, 0);
    int last = store;
    for (char const* const next : {"list prepend setstate", "list trim"}) {
        const int object = patch.Object(next);
        patch.Connect(std::exchange(last, object), 0, object, 0);
    }
    patch.Connect(last, 0, room, 0);
    patch.At(0.0,
             "\\; room source 1 ade 33 2 1 \\; room tr0 2.75 \\; room getstate \\; room source 1 xyz 1 2 3 \\; room "
             "gain 3 \\; recall bang \\; room getstate \\; pd quit");
    const std::string said = Open(patch).err;
    const auto first = said.substr(0, said.find('\n') + 1);
    EXPECT_TRUE(first.starts_with("print: ")) << said;
    EXPECT_EQ(said, first + "orvanverb~: 32 attributes (66 atoms) restored from the pattrstorage\n" + first);
}

// A session of patching. Red for a leak, a crash, or memory used after it was freed.
TEST_F(InPd, HundredObjectsComeAndGoWhileAudioRuns) {
    PdPatch patch;
    patch.Subpatch(PdPatch(), "yard");
    patch.At(0.0, "\\; pd dsp 1");
    std::string errors;
    for (int round = 0; round < 4; ++round) {
        std::string make;
        for (int i = 0; i < 25; ++i)
            make.append(" \\; pd-yard obj 10 10 orvanverb~ @numsources 1 @numspeakers ")
                .append(std::to_string(2 + i % 5))
                .append(" @autosave ")
                .append(std::to_string(i % 2));
        // Pd takes them into its signal chain when it compiles it: at the end of an edit by hand, here by a word.
        patch.At(20.0 + 40.0 * round, make + " \\; pd-yard connect 0 0 1 0 \\; pd dsp 0 \\; pd dsp 1");
        // Nobody may be left to listen for a state from the file.
        patch.At(40.0 + 40.0 * round, "\\; pd-yard clear \\; #A setstate 1");
        errors.append("error: #A: no such object \n");
    }
    patch.At(200.0, "\\; pd quit");
    EXPECT_EQ(Open(patch, {}, PD_LEAK_CHECK).err, errors);
}

TEST_F(InPd, TheHelpPatchOpensWithoutAnError) {
    PdPatch control;
    control.At(100.0, "\\; pd dsp 1");
    control.At(300.0, "\\; pd quit");
    EXPECT_EQ(Open(control, {"-open", PD_HELP_PATCH}).err, "");
}
