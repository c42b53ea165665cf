#include "filters/unitary_hl_shelf.h"

namespace Lume {

void UnitaryHLShelf::SetGaindB(float dB) {
    StoreGain(dB);
}

}  // namespace Lume
