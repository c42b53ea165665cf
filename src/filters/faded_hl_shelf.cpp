#include "filters/faded_hl_shelf.h"

namespace Lume {

void FadedHLShelf::SetParameters(HLShelfParameters const& parameters) {
    const float set[] = {parameters.gain,     parameters.gainLow, parameters.gainMed,
                         parameters.gainHigh, parameters.freqLow, parameters.freqHigh};
    SetCoefficients(set, false);
}

}  // namespace Lume
