#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "program/run_program.h"
#include "program/sound_files.h"
#include "support/sdif_writer.h"

// What files made to do harm may cost: 25 times their size and 64 MB of memory, and a second for each of their MB.

namespace {

constexpr std::size_t fileSize = 4'000'000;

std::string Sdif(std::size_t numRows) {
    SdifWriter writer;
    SdifMatrix matrix{"XPOS", 8, static_cast<std::uint32_t>(numRows), 1, std::vector<double>(numRows, 1.0)};
    writer.Frame("HRTF", 1, {matrix});
    return numRows > 1 ? writer.bytes : writer.bytes.substr(16);  // without the file's header
}

std::string SdifHeader() {
    return SdifWriter().bytes;
}

std::string WavHeader() {
    using namespace std::string_literals;
    return "RIFF\0\0\x3D\0WAVEfmt \x10\0\0\0\1\0\1\0\x80\xBB\0\0\0\x77\1\0\2\0\x10\0"s;
}

struct Case {
    char const* call;         // FILE.ext is the crafted file, IN a recording, OUT an output
    std::string head, piece;  // the file: the head, and the piece again and again
};

// Red if a reader keeps many times what it reads, looks at everything again for each line, or works for as long as a
// time or a number in a file says.
TEST(LargeFiles, CostWhatTheirSizeAllows) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "sanitizers take memory and time of their own";
#endif
    const TemporaryDirectory directory;
    WriteSound(directory / "in.wav", MakeTone(440.0, 0.01, 48000));
    const Case cases[] = {
        {"render IN -o OUT --tail 0 --scene FILE.scene", "", "x\n"},
        {"render IN -o OUT --tail 0 --scene FILE.scene", "", "1 "},
        {"render IN -o OUT --tail 0 --scene FILE.scene", "", "1 a\n"},
        {"render IN -o OUT --tail 0 --scene FILE.scene", "", "0 mute 0\n"},
        {"render IN -o OUT --tail 0 --scene FILE.scene", "0..1 source 1 azim", " 0 -> 1"},
        {"scene check FILE.scene", "", "x\n"},
        {"scene plot FILE.scene -o OUT.svg", "", "0 source 1 azim 3\n"},
        {"scene plot FILE.scene -o OUT.svg", "0..1e9 source 1 azim 0 -> 9\n", "#\n"},
        {"pan IN -o OUT --method ms --scene FILE.scene", "", "0..9 source 1 azim 0 -> 9\n"},
        {"render IN -o OUT --tail 0 --preset FILE.room", "", "tr0 1\n"},
        {"room --preset FILE.room --size 2", "", "# a\n"},
        {"render IN -o OUT --tail 0 --speakers FILE.layout", "", "1\n"},
        {"render IN -o OUT --tail 0 --state FILE.state", "orvanverb-state 1\n", "x\n"},
        {"render IN -o OUT --tail 0 --state FILE.state", "orvanverb-state 1\nsources", " 0 1 0"},
        {"hrtf info FILE.hrtf", SdifHeader(), Sdif(1)},
        {"hrtf info FILE.hrtf", Sdif(fileSize / 8), ""},
        {"hrtf info FILE.near", SdifHeader(), Sdif(1)},
        {"hrtf info FILE.bin2trans", SdifHeader(), Sdif(1)},
        {"hrtf info FILE.coll", "", "1, 2;\n"},
        {"hrtf info FILE.coll", "1,", " 2"},
        {"hrtf info FILE.sofa", "\x89HDF\r\n\x1a\n", "\xff"},
        {"render FILE.wav -o OUT --tail 0", WavHeader(), std::string("junk\0\0\0\0", 8)},
    };
    for (Case const& tried : cases) {
        SCOPED_TRACE(testing::Message() << tried.call << " with " << tried.head.substr(0, 40) << tried.piece);
        std::vector<std::string> words;
        std::string file;
        std::istringstream call(tried.call);
        for (std::string word; call >> word;) {
            if (word == "IN") word = directory / "in.wav";
            if (word.starts_with("OUT")) word = directory / ("out" + word.substr(3));
            if (word.starts_with("FILE")) word = file = directory / ("file" + word.substr(4));
            words.push_back(word);
        }
        std::string content = tried.head;
        while (!tried.piece.empty() && content.size() < fileSize) content += tried.piece;
        WriteText(file, content);
        const RunResult run = RunProgram(words, "exec timeout 60");
        EXPECT_TRUE(run.status == 0 || run.status == 1) << run.status;  // done, or refused: neither killed nor lost
        EXPECT_EQ(run.status == 1 && run.err.empty() && run.out.empty(), false);
        EXPECT_LE(run.peakMemoryKb, static_cast<long>(25 * content.size() / 1024 + 65536));
        EXPECT_LE(run.processorSeconds, 1e-6 * static_cast<double>(content.size()));
    }
}

}  // namespace
