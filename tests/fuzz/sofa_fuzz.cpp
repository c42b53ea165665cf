#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "orvanverb/common/program_error.h"
#include "orvanverb/hrtf/sofa_file.h"
#include "support/memory_file.h"

/// The library that reads the format forgets what it has read of a damaged file.
extern "C" char const* __lsan_default_suppressions() {  // NOLINT(bugprone-reserved-identifier): the sanitizer's name
    return "leak:libmysofa";
}

/// A measured head with bytes changed: the file is a megabyte of HDF5, which no fuzzer makes up. Of the input the first
/// byte says in which 256th of the file the changes begin, each three bytes then where behind it (16 bits) and the new
/// value. What is read whole must be numbers.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static const MemoryFile file;
    static const std::string head = [] {
        std::ifstream stream("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", std::ios::binary);
        return std::string{std::istreambuf_iterator<char>(stream), {}};
    }();
    if (head.empty()) std::abort();
    if (size == 0) return 0;
    std::string content = head;
    const std::size_t begin = data[0] * (head.size() / 256);
    for (std::size_t i = 1; i + 3 <= size; i += 3)
        content[(begin + data[i] + 256u * data[i + 1]) % content.size()] = static_cast<char>(data[i + 2]);
    if (!file.Write(content)) std::abort();
    try {
        for (program::MeasuredSet::Direction const& direction : program::ReadSofaFile(file.name).directions)
            for (auto const& ear : direction.ears)
                for (const float sample : ear.response)
                    if (!std::isfinite(sample)) std::abort();
    } catch (program::ProgramError const&) {
    }
    return 0;
}
