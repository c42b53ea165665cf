#include <gtest/gtest.h>

#include <sstream>
#include <string>

#include "orvanverb/common/text.h"
#include "program/run_program.h"
#include "program/sound_files.h"

namespace {

// Red if a wrong word passes, ends with another status, or isn't named.
TEST(Complaints, AreThoseOnFile) {
    const TemporaryDirectory directory;
    for (auto const& [name, numChannels] : {std::pair{"one.wav", 1u}, {"two.wav", 2u}, {"four.wav", 4u}}) {
        const std::vector<float> tone = MakeTone(440.0, 0.05, 48000).samples[0];
        WriteSound(directory / name, {std::vector(numChannels, tone)});
    }
    WriteText(directory / "three.layout", "0\n120\n-120\n");
    for (char const* const name : {"text.hrtf", "text.bin2trans"}) WriteText(directory / name, "no set\n");
    std::istringstream lines(ReadText(ORVAN_COMPLAINTS));
    for (std::string line; std::getline(lines, line);) {
        if (line.empty() || line[0] == '#') continue;
        SCOPED_TRACE(line);
        const std::size_t piece = line.find(" | ") + 3, call = line.find(" | ", piece);
        ExpectComplaint(RunProgram(program::SplitWords(line.substr(call + 3)), "cd '" + (directory / "") + "' && exec"),
                        std::stoi(line), line.substr(piece, call - piece));
    }
}

}  // namespace
