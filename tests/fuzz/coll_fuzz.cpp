#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "dsp/console.h"
#include "dsp/orvan_dsp_exception.h"
#include "hrtf/coll_file.h"
#include "hrtf/hrtf.h"
#include "support/memory_file.h"

/// Any bytes as a text of rows, on a grid so small that the fuzzer can fill it, and as a table of positions.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    static const MemoryFile file;
    orvandsp::SetConsoleWriter([](orvandsp::Console, std::string const&) {});
    if (!file.Write({reinterpret_cast<char const*>(data), size})) std::abort();

    Lume::HrtfInfo grid;
    grid.elevationStep = 45;
    grid.numElevations = 2;
    grid.coefficientsPerRow = 3;
    grid.az = {2, 1};
    grid.offsets = {0, 2};
    Lume::Hrtf set("");
    try {
        set.LoadFromColl(file.name, grid);
        if (set.GetNumPoints() != 3) std::abort();
    } catch (orvandsp::OrvanDspException const&) {
        if (set.GetNumPoints() != 710) std::abort();
    }
    for (unsigned int i = 0; i < set.GetNumPoints(); ++i)
        for (const float coefficient : set.GetHrtfPoint(i).coefficients)
            if (!std::isfinite(coefficient)) std::abort();

    std::vector<Lume::CartesianVector> positions;
    Lume::ReadPositionsFromTextFile(file.name, positions);
    return 0;
}
