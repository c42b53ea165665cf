#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <sstream>

#include "max/api.h"
#include "max/box.h"
#include "plugins/pd_patch.h"
#include "program/sound_files.h"
#include "support/signals.h"

namespace {

/// A message and the sample before which it is due; below 0: before audio.
struct Event {
    long sample;
    std::string message;
};

class InPd : public testing::Test {
protected:
    RunResult Open(PdPatch const& patch, std::vector<std::string> const& options = {}, std::string const& before = {}) {
        WriteText(directory / "test.pd", patch.Text());
        const RunResult run = RunPd(directory / "test.pd", options, before);
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err.find("couldn't create"), std::string::npos) << run.err;
        return run;
    }

    /// Opens a patch with one object, [r room] before and [print state] behind it, and tells it messages. Answers with
    /// what Pd's console says.
    std::string Tell(std::string const& words, std::vector<std::string> const& messages) {
        PdPatch patch;
        const int receive = patch.Object("r room");
        const int room = patch.Object("orvanverb~ " + words);
        const int print = patch.Object("print state");
        patch.Connect(receive, 0, room, 0);
        patch.Connect(room, NumSpeakers(words), print, 0);
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
    Sound Play(Sound const& sound, std::string const& words, std::vector<Event> const& events, int blockSize) {
        const auto numSources = sound.samples.size(), numSpeakers = static_cast<std::size_t>(NumSpeakers(words));
        WriteSound(directory / "in.wav", sound);
        std::string inputs, outputs;
        for (std::size_t i = 0; i < numSources; ++i) inputs.append(" in").append(std::to_string(i));
        for (std::size_t i = 0; i < numSpeakers; ++i) outputs.append(" out").append(std::to_string(i));

        // Inlets and outlets of the subpatch stand from left to right.
        PdPatch inner;
        const int receive = inner.Object("r room");
        const int room = inner.Object("orvanverb~ " + words);
        inner.Object("block~ " + std::to_string(blockSize));
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
        const std::string length = std::to_string(sound.NumFrames());
        for (std::size_t i = 0; i < numSources; ++i) patch.Object("array define in" + std::to_string(i) + " " + length);
        for (std::size_t i = 0; i < numSpeakers; ++i)
            patch.Object("array define out" + std::to_string(i) + " " + length);
        const int file = patch.Object("soundfiler");
        patch.Connect(patch.Object("r file"), 0, file, 0);

        std::string script = "\\; file read " + (directory / "in.wav") + inputs;
        for (auto const& [sample, message] : events)
            if (sample < 0) script.append(" \\; room ").append(message);
        patch.At(0.0, script + " \\; go bang \\; pd dsp 1");
        const auto at = [&](long sample, std::string const& message) {
            patch.At(1000.0 * static_cast<double>(sample) / sound.samplerate, message);
        };
        for (auto const& [sample, message] : events)
            if (sample >= 0) at(sample, "\\; room " + message);
        at(static_cast<long>(sound.NumFrames()) + blockSize + 128, "\\; file write -wave -bytes 4 " + (directory / "out.wav") + outputs + " \\; pd quit");
        const RunResult run = Open(patch, {"-r", std::to_string(sound.samplerate)});
        EXPECT_EQ(run.err.find("error"), std::string::npos) << run.err;
        return ReadSound(directory / "out.wav");
    }
};

double Energy(std::vector<float> const& channel) {
    return EnergyOf(channel);
}

}  // namespace

// The object in Pd, in its signal chain and driven by its messages, against the program: the same to the last bit. Red if
// a message comes a vector late, a channel is swapped, a block is cut, or anything is done to the sound on the way.
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
        int samplerate, blockSize;
        char const* speakers;
    };
    for (auto const& [samplerate, blockSize, speakers] : {Case{48000, 64, "8"}, {44100, 256, "2"}, {32000, 16, "5"}}) {
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
        const RunResult run = RunProgram({"render", directory / "dry.wav", "-o", directory / "wet.wav", "--speakers",
                                          speakers, "--scene", directory / "test.scene", "--vector",
                                          std::to_string(blockSize), "--tail", "0"});
        ASSERT_EQ(run.status, 0) << run.err;
        const Sound expected = ReadSound(directory / "wet.wav");

        Sound padded = dry;
        for (std::vector<float>& channel : padded.samples) channel.insert(channel.begin(), settle, 0.0f);
        const Sound played = Play(padded, std::string("@numsources 2 @numspeakers ") + speakers, late, blockSize);

        ASSERT_EQ(played.samples.size(), expected.samples.size());
        ASSERT_EQ(played.NumFrames(), settle + length);
        for (std::size_t c = 0; c < played.samples.size(); ++c) {
            EXPECT_GT(Energy(expected.samples[c]), 1.0);
            const auto [wet, record] = std::mismatch(expected.samples[c].begin(), expected.samples[c].end(),
                                                     played.samples[c].begin() + static_cast<std::ptrdiff_t>(settle));
            EXPECT_EQ(wet - expected.samples[c].begin(), static_cast<std::ptrdiff_t>(length))
                << "speakers " << speakers << ", channel " << c;
        }
    }
}
