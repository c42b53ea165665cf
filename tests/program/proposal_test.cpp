#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

double DecayAt(std::string const& json, char const* band) {
    const std::string key = "\"t30\": ";
    const std::size_t at = json.find(key, json.find("\"band\": \"" + std::string(band) + "\""));
    return std::stod(json.substr(at + key.size()));
}

// Red if crossovers aren't made up for, if loops are taken for as long as their delays, or if the preset isn't what was
// measured.
TEST(Proposal, DecaysAsAsked) {
    struct Case {
        char const *volume, *decay, *low, *high;
    };
    for (Case const& wanted :
         {Case{"60", "0.4", "0.5", "0.35"}, Case{"2000", "1.5", "1.8", "1.1"}, Case{"12000", "2", "2", "2.2"}}) {
        SCOPED_TRACE(wanted.volume);
        const TemporaryDirectory directory;
        const RunResult room = RunWell({"room", "--volume", wanted.volume, "--rt60", wanted.decay, "--rt60-low",
                                        wanted.low, "--rt60-high", wanted.high});
        ExpectContains(room.out, *wanted.decay == '0' ? "numinternals 16\n" : "numinternals 8\n");
        WriteText(directory / "a.room", room.out);
        RunWell({"ir", "-o", directory / "a.wav", "--speakers", "8", "--source", "1", "0", "0", "3", "--preset",
                 directory / "a.room", "--tail", "2.6"});
        const std::string json = RunProgram({"measure", directory / "a.wav", "--json"}).out;
        const double decay = std::stod(wanted.decay), low = std::stod(wanted.low), high = std::stod(wanted.high);
        EXPECT_NEAR(DecayAt(json, "125"), low, 0.05 * low);
        EXPECT_NEAR(0.5 * (DecayAt(json, "500") + DecayAt(json, "1000")), decay, 0.05 * decay);
        EXPECT_NEAR(DecayAt(json, "4000"), high, 0.05 * high);
    }
}

// Red if a time is forgotten, or if the level of the room doesn't fall with the surface: of a room of a half and of
// twice the size, reflections come at half and twice the time, and the room is 6 dB louder and softer at the same
// distance.
TEST(Proposal, ChangesTheSizeOfARoom) {
    const TemporaryDirectory directory;
    const auto figures = [&](std::string const& preset) {
        RunProgram({"ir", "-o", directory / "a.wav", "--speakers", "8", "--source", "1", "0", "0", "3", "--preset",
                    preset, "--tail", "6", "--set", "air=0"});
        return RunProgram({"measure", directory / "a.wav", "--json"}).out;
    };
    const auto figure = [](std::string const& json, std::string const& key) {
        return std::stod(json.substr(json.find("\"" + key + "\": ") + key.size() + 4));
    };
    const std::string usual = figures("church");
    for (const double size : {0.5, 2.0}) {
        SCOPED_TRACE(size);
        const RunResult run = RunWell({"room", "--preset", "church", "--size", std::to_string(size)});
        WriteText(directory / "b.room", run.out);
        const std::string other = figures(directory / "b.room");
        EXPECT_NEAR(DecayAt(other, "500") / DecayAt(usual, "500"), size, 0.05 * size);
        EXPECT_NEAR(figure(other, "to_rest_db") - figure(usual, "to_rest_db"), 20.0 * std::log10(size), 1.0);
        ExpectContains(run.out, size > 1.0 ? "early_start 44\n" : "early_start 11\n");
    }
}

TEST(Proposal, TakesOtherForms) {
    const std::vector<std::string> room{"room", "--volume", "60", "--rt60", "0.4", "--as"};
    const RunResult words = RunProgram(Joined(room, {"words"}));
    EXPECT_TRUE(words.out.starts_with("@gain ")) << words.out;
    ExpectContains(words.out, " @numinternals 16\n");
    EXPECT_TRUE(RunProgram(Joined(room, {"state"})).out.starts_with("orvanverb-state 1\n"));
    const RunResult json = RunProgram({"room", "--volume", "60", "--rt60", "0.4", "--json", "--quiet"});
    EXPECT_EQ(json.err, "");
    ExpectContains(json.out, "\"numinternals\": 16");
    EXPECT_NEAR(DecayAt(json.out, "1000"), 0.4, 0.02);
}

}  // namespace
