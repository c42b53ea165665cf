#include "hrtf/hrtf_info.h"

namespace Lume {

HrtfInfoBinauralBiquadFullSphere::HrtfInfoBinauralBiquadFullSphere() {
    lowestElevation = -40;
    highestElevation = 90;
    elevationStep = 10;
    numElevations = 14;
    lowestAzimuth = -180;
    highestAzimuth = 180;
    coefficientsPerRow = 26;
    az = {56, 60, 72, 72, 72, 72, 72, 60, 56, 45, 36, 24, 12, 1};
    offsets = {0, 56, 116, 188, 260, 332, 404, 476, 536, 592, 637, 673, 697, 709};
}

}  // namespace Lume
