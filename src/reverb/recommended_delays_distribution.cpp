#include "reverb/recommended_delays_distribution.h"

#include <algorithm>
#include <cmath>

#include "parameters/lume_default_parameters.h"
#include "parameters/room_ir_parameters.h"

namespace Lume {

namespace {

/// Limits a value. Where the limits cross, the lower one wins.
float Limited(float value, float lower, float upper) {
    return std::max(std::min(value, upper), lower);
}

}  // namespace

void RecommendedDelaysDistribution(unsigned int numDelays, float roomVolume, float sum, float& earlyStart,
                                   float& earlyEnd, float& earlyDistribution, float& clusterStart, float& clusterEnd,
                                   float& clusterDistribution, float& reverbStart, float& modalDensity) {
    using Defaults = LumeDefaultParameters;

    earlyEnd = 0.8f * std::sqrt(Limited(roomVolume, Defaults::MinRoomVolume, Defaults::MaxRoomVolume));
    clusterStart = 0.9f * earlyEnd;
    earlyEnd = Limited(earlyEnd, Defaults::MinEarlyStart, Defaults::MaxEarlyStart);
    clusterStart = Limited(clusterStart, Defaults::MinClusterStart, Defaults::MaxClusterStart);

    // How far the volume is on its way from the smallest room to the largest; beyond them it goes on.
    const float t = (roomVolume - 10.0f) / 14990.0f;
    earlyStart = Limited(earlyEnd - 89.0f * t - 1.0f, 1.0f, earlyEnd);
    earlyEnd = Limited(earlyEnd, earlyStart, 120.0f);
    clusterEnd = 295.0f * t + 5.0f + clusterStart;
    reverbStart = 0.9f * clusterEnd;
    clusterEnd = Limited(clusterEnd, earlyEnd, 300.0f);
    clusterStart = Limited(clusterStart, earlyStart, 300.0f);
    reverbStart = Limited(reverbStart, clusterStart, Defaults::MaxReverbStart);

    // The sums that the late field's delays can reach from that shortest delay; above eight delays they count in groups
    // of eight.
    const float span = (reverbStart - clusterStart) * 0.001f;
    const auto n = static_cast<float>(numDelays);
    const auto groups = static_cast<float>(numDelays >> 3);
    const float lowest = numDelays < 9 ? 1.5f * n * span : 12.0f * groups * span;
    const float highest = numDelays < 9 ? 0.5f * (n + 1.0f) * n * span : 36.0f * groups * span;
    modalDensity = std::max(Limited(modalDensity, lowest, highest), Defaults::MinReverbModalDensity);

    const float u = (modalDensity - 0.2f) / (highest - 0.2f);
    earlyDistribution = Limited(0.20000002f * u + 0.4f, Defaults::MinDistribution, Defaults::MaxDistribution);
    clusterDistribution = Limited(0.29999998f * u + 0.4f, Defaults::MinDistribution, Defaults::MaxDistribution);

    RoomIRParameters times(earlyStart, earlyEnd, earlyDistribution, 0.0f, clusterStart, clusterEnd, clusterDistribution,
                           reverbStart, modalDensity);
    times.ApplyConstraints(sum, numDelays);
    earlyStart = times.earlyStart;
    earlyEnd = times.earlyEnd;
    earlyDistribution = times.earlyDistribution;
    clusterStart = times.clusterStart;
    clusterEnd = times.clusterEnd;
    clusterDistribution = times.clusterDistribution;
    reverbStart = times.reverbStart;
    modalDensity = times.modalDensity;
}

}  // namespace Lume
