#include "filters/unitary_hl_shelf.h"

namespace Lume {

void UnitaryHLShelf::Process(float* output, float* input, unsigned long numSamples) {
    // The product with 1 is exact and costs nothing: the recursion takes longer.
    Run(output, input, numSamples, 1.0f);
}

void UnitaryHLShelf::SetGaindB(float dB) {
    StoreGain(dB);
}

}  // namespace Lume
