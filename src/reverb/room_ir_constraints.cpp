#include <algorithm>

#include "parameters/lume_default_parameters.h"
#include "parameters/room_ir_parameters.h"
#include "reverb/delgen.h"
#include "reverb/fdens.h"

namespace Lume {

namespace {

/// A value above the maximum becomes the maximum, any other is raised to the floor, also when that lies above the
/// maximum.
float Constrained(float value, float floor, float maximum) {
    return value > maximum ? maximum : std::max(value, floor);
}

}  // namespace

void RoomIRParameters::ApplyConstraints(float sum, unsigned int numChannels) {
    using Defaults = LumeDefaultParameters;

    earlyStart = std::clamp(earlyStart, Defaults::MinEarlyStart, Defaults::MaxEarlyStart);
    earlyEnd = Constrained(earlyEnd, earlyStart + 1.0f, Defaults::MaxEarlyEnd);
    earlyDistribution = std::clamp(earlyDistribution, Delgen::MinDistribution, Delgen::MaxDistribution);
    clusterStart = Constrained(clusterStart, earlyStart + 1.0f, Defaults::MaxClusterStart);
    clusterEnd = Constrained(clusterEnd, std::max(clusterStart + 1.0f, earlyEnd), Defaults::MaxClusterEnd);
    clusterDistribution = std::clamp(clusterDistribution, Delgen::MinDistribution, Delgen::MaxDistribution);
    reverbStart = Constrained(reverbStart, clusterStart, Defaults::MaxReverbStart);

    // More than eight channels count in groups of eight.
    const bool inGroups = numChannels > 8;
    float lowest, highest, densityBound, maximumDelay, echoDensity;
    fdens(sum, reverbStart - clusterStart, inGroups ? 8 : numChannels, Delgen::DefaultMinimumEchoDensity, lowest,
          highest, densityBound, maximumDelay, echoDensity);
    if (inGroups) {
        const auto groups = static_cast<float>(numChannels >> 3);
        lowest *= groups;
        highest *= groups;
    }
    modalDensity = std::max(Constrained(modalDensity, lowest, highest), Defaults::MinReverbModalDensity);
}

}  // namespace Lume
