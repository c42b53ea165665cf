#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "hrtf/sdif_access.h"
#include "hrtf/sdif_set.h"
#include "support/memory_file.h"

/// Any bytes as an SDIF set: it must load whole or end in the library's exception.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static const MemoryFile file;
    orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});  // one line for each refusal
    if (!file.Write({reinterpret_cast<char const*>(data), size})) std::abort();
    Lume::ContainsHrtfInfosHeader(file.name);
    for (const unsigned int numPositions : {1u, 2u}) {
        try {
            const Lume::SdifSet set = Lume::ReadSdifSet(file.name, numPositions);
            if (set.points.size() != set.header.numPoints) std::abort();
        } catch (orvandsp::OrvanDspException const&) {
        }
    }
    return 0;
}
