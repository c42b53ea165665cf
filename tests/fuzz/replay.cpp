#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

/// Runs the files named, and each of them cut short at up to MAX_CUTS lengths, through a fuzz target. What it finds is
/// a crash.
int main(int argc, char** argv) {
    if (argc < 2) {
        std::fprintf(stderr, "no files: the corpus is missing\n");
        return 2;
    }
    for (int i = 1; i < argc; ++i) {
        std::ifstream stream(argv[i], std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(stream), {}};
        if (content.empty()) {
            std::fprintf(stderr, "%s: nothing to read\n", argv[i]);
            return 1;
        }
        const std::size_t step = content.size() / MAX_CUTS + 1;
        for (std::size_t length = content.size() % step; length <= content.size(); length += step) {
            // A copy of that very length, so that the sanitizers see a read beyond it.
            const std::string part = content.substr(0, length);
            LLVMFuzzerTestOneInput(reinterpret_cast<std::uint8_t const*>(part.data()), part.size());
        }
    }
    return 0;
}
