#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

// Red if names aren't found, if one's own room doesn't come first, or if a path stops working.
TEST(Presets, AreFoundByNameAndByPath) {
    const TemporaryDirectory directory;
    const auto render = [&](std::string const& preset, std::string const& home) {
        const RunResult run = RunProgram({"ir", "-o", directory / "out.wav", "--tail", "0.5", "--preset", preset},
                                         "XDG_DATA_HOME=" + home);
        EXPECT_EQ(run.status, 0) << run.err;
        return ReadSound(directory / "out.wav").samples;
    };
    const auto builtIn = render("church", "/nonexistent");
    EXPECT_NE(builtIn, render("vocal_booth", "/nonexistent"));

    std::filesystem::create_directories(directory / "home/orvanverb/rooms");
    const std::string own = directory / "home/orvanverb/rooms/church.room";
    WriteText(own, "# My church.\n# measured: T30 0.20 s, C80 20.0 dB\ntr0 0.2\n");
    const auto mine = render("church", directory / "home");
    EXPECT_NE(mine, builtIn);
    EXPECT_EQ(mine, render(own, "/nonexistent"));

    const RunResult list = RunProgram({"presets"}, "XDG_DATA_HOME=" + (directory / "home"));
    EXPECT_EQ(list.status, 0) << list.err;
    ExpectContains(list.out, "church             0.20    20.0");
    ExpectContains(list.out, "My church");
    ExpectContains(list.out, "\ncathedral ");
}

// Red if crossovers, air or the lines' delays are left out of what a room asks for.
TEST(Presets, AskForTheDecayThatTheirControlsMean) {
    const TemporaryDirectory directory;
    std::filesystem::create_directories(directory / "orvanverb/rooms");
    const auto asked = [&](std::string const& room) {
        WriteText(directory / "orvanverb/rooms/aaa.room", room);
        const RunResult run = RunProgram({"presets", "--json"}, "XDG_DATA_HOME=" + (directory / ""));
        const std::string key = "\"asked_t30\": {\"63\": ";
        const std::string octaves = run.out.substr(run.out.find("\"aaa\""));
        const std::string at16k = "\"16000\": ";
        return std::pair(std::stod(octaves.substr(octaves.find(key) + key.size())),
                         std::stod(octaves.substr(octaves.find(at16k) + at16k.size())));
    };
    const auto flat = asked("tr0 2\ntrh 1\n");
    EXPECT_NEAR(flat.first, 2.0, 0.002);
    EXPECT_NEAR(flat.second, 2.0, 0.002);
    const auto bent = asked("tr0 2\ntrl 1.5\ntrh 0.5\nfl 1000\nfh 2000\n");
    EXPECT_NEAR(bent.first, 3.0, 0.03);
    EXPECT_NEAR(bent.second, 1.0, 0.03);
    // From 4 kHz on the air takes 0.032 dB a metre here, at 340 m a second, beside the 30 dB a second of the room.
    EXPECT_NEAR(asked("tr0 2\ntrh 1\nair 1\nairfreq 4000\n").second, 60.0 / (30.0 + 0.032 * 340.0), 0.05);
}

}  // namespace
