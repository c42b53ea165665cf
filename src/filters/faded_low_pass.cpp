#include "filters/faded_low_pass.h"

namespace Lume {

FadedLowPass::FadedLowPass() {
    newCoefficients.resize(filterA.GetNumCoefficients());
    SetCrossFadeTime(DefaultLowPassCrossFadeTime);
}

}  // namespace Lume
