#include <gtest/gtest.h>

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
        const RunResult room = RunProgram({"room", "--volume", wanted.volume, "--rt60", wanted.decay, "--rt60-low",
                                           wanted.low, "--rt60-high", wanted.high});
        ASSERT_EQ(room.status, 0) << room.err;
        WriteText(directory / "a.room", room.out);
        const RunResult ir = RunProgram({"ir", "-o", directory / "a.wav", "--speakers", "8", "--source", "1", "0", "0",
                                         "3", "--preset", directory / "a.room", "--tail", "2.6"});
        ASSERT_EQ(ir.status, 0) << ir.err;
        const std::string json = RunProgram({"measure", directory / "a.wav", "--json"}).out;
        const double decay = std::stod(wanted.decay), low = std::stod(wanted.low), high = std::stod(wanted.high);
        EXPECT_NEAR(DecayAt(json, "125"), low, 0.05 * low);
        EXPECT_NEAR(0.5 * (DecayAt(json, "500") + DecayAt(json, "1000")), decay, 0.05 * decay);
        EXPECT_NEAR(DecayAt(json, "4000"), high, 0.05 * high);
    }
}

TEST(Proposal, TakesOtherForms) {
    const std::vector<std::string> room{"room", "--volume", "60", "--rt60", "0.4", "--as"};
    const RunResult words = RunProgram(Joined(room, {"words"}));
    EXPECT_TRUE(words.out.starts_with("@gain ")) << words.out;
    EXPECT_NE(words.out.find(" @numinternals 16\n"), std::string::npos) << words.out;
    EXPECT_TRUE(RunProgram(Joined(room, {"state"})).out.starts_with("orvanverb-state 1\n"));
    ExpectComplaint(RunProgram(Joined(room, {"poem"})), 2, "none of preset, words and state");
    ExpectComplaint(RunProgram({"room", "--volume", "5", "--rt60", "1"}), 2, "'5' is no number from 10 to 15000");
}

}  // namespace
