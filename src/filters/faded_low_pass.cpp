#include "filters/faded_low_pass.h"

namespace Lume {

FadedLowPass::FadedLowPass() {
    SetCrossFadeTime(DefaultLowPassCrossFadeTime);
}

}  // namespace Lume
