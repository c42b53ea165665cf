#include <gtest/gtest.h>

#include <string>

#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

// Red if the report is of another room than the one that plays: the preset's, or the one at the scene's end.
TEST(Report, TellsTheRoomWithWhichTheRenderingBegins) {
    const TemporaryDirectory directory;
    WriteText(directory / "a.scene", "0.05 tr0 5\n");
    const RunResult run = RunWell({"ir", "-o", directory / "a.wav", "--tail", "0.2", "--set", "tr0=0.7", "--set",
                                   "trh=1", "--scene", directory / "a.scene", "--report", "--report-json"});
    const std::size_t row = run.err.find("   1000  ");
    ASSERT_NE(row, std::string::npos) << run.err;
    std::size_t used = 0;
    const std::string figures = run.err.substr(row + 9);
    EXPECT_NEAR(std::stod(figures, &used), 0.7, 0.006) << run.err;
    EXPECT_NEAR(std::stod(figures.substr(used)), 0.7, 0.035) << run.err;
    EXPECT_TRUE(run.out.starts_with("{\"asked_t30\": {\"63\": 0.7")) << run.out.substr(0, 80);
}

}  // namespace
