#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "orvanverb/command_line.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/object/shell.h"
#include "program/sound_files.h"

namespace {

/// One call of the program. FILE.ext becomes a file of that extension with what the fuzzer made, IN a recording of two
/// channels, OUT an output.
constexpr char const* calls[] = {
    "render FILE.wav -o OUT --tail 0",
    "render IN -o OUT --tail 0 --preset FILE.room",
    "render IN -o OUT --tail 0 --scene FILE.scene",
    "render IN -o OUT --tail 0 --state FILE.state",
    "render IN -o OUT --tail 0 --speakers FILE.layout",
    "render IN -o OUT --tail 0 --hrtf FILE.hrtf",
    "pan IN -o OUT --method vbap --speakers FILE.layout --scene FILE.layout",
    "pan IN -o OUT --method binaural --hrtf FILE.hrtf",
    "pan IN -o OUT --method binaural --model nearfield --near FILE.near",
    "decode FILE.wav -o OUT --type hoa2d",
    "decode FILE.wav -o OUT --type hoa3d",
    "hrtf info FILE.hrtf",
    "hrtf info FILE.near",
    "hrtf info FILE.bin2trans",
    "hrtf info FILE.coll",
    "hrtf convert FILE.hrtf OUT.hrtf --fir --length 128",
    "hrtf transaural FILE.hrtf OUT.bin2trans --network leastsquares --pair -90 90 --length 64",
    "decode IN -o OUT --type transaural --sub-type shufflersymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type shufflerasymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type recursivesymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type recursiveasymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type feedforwardsymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type feedforwardasymmetric --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type leastsquares --filters FILE.bin2trans",
    "decode IN -o OUT --type transaural --sub-type recursivesymmetricbiquads --filters FILE.hrtf",
    "decode IN -o OUT --type transaural --sub-type shufflersymmetric --filters FILE.coll",
    "shell",
};

struct Folder : TemporaryDirectory {
    Folder() {
        Sound sound;
        sound.samplerate = 8000;
        sound.samples.assign(2, std::vector<float>(100, 0.25f));
        WriteSound(*this / "in.wav", sound);
    }
};

}  // namespace

/// The library that reads sound files forgets a decoder when a damaged Ogg stream ends too soon.
extern "C" char const* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "leak:libvorbis";
}

/// A first byte that chooses the call, and the bytes of the file that the call reads: it must end well or in a
/// complaint.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static const Folder folder;
    if (size == 0) return 0;
    const std::string content(reinterpret_cast<char const*>(data) + 1, size - 1);
    std::vector<std::string> words{"orvanverb"};
    bool writes = false;
    std::istringstream call(calls[(data[0] - std::size_t{'A'}) % std::size(calls)]);
    for (std::string word; call >> word;) {
        if (word == "IN") word = folder / "in.wav";
        if (word.starts_with("OUT")) {
            word = folder / ("out" + word.substr(3));
            writes = true;
        }
        if (word.starts_with("FILE")) {
            word = folder / ("file" + word.substr(4));
            WriteText(word, content);
        }
        words.push_back(word);
    }
    if (writes) words.push_back("--force");
    try {
        if (words.back() == "shell") {
            std::ostringstream out;
            program::Shell shell("", out);
            std::istringstream lines(content);
            // One message writes a file where it stands.
            for (std::string line; std::getline(lines, line) && line.find("generatexml") == std::string::npos;)
                if (!shell.Handle(line)) break;
            return 0;
        }
        std::vector<char const*> arguments;
        arguments.reserve(words.size());
        for (std::string const& word : words) arguments.push_back(word.c_str());
        const program::Call parsed = program::ParseCommandLine(static_cast<int>(arguments.size()), arguments.data());
        if (parsed.run) parsed.run();
    } catch (program::ProgramError const&) {
    }
    return 0;
}
