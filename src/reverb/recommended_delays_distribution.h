#pragma once

namespace Lume {

/// Proposes a complete time structure for a room: where early reflections, cluster and late field start and end, and
/// how their delays are distributed. Times in milliseconds from the direct sound. Control side only.
/// @param numDelays     number of internal channels
/// @param roomVolume    [m^3]; 10 to 15000 make sense
/// @param sum           wanted sum of all delays of the late field [s], see fdens
/// @param modalDensity  read and changed [s]: limited to what so many delays can give
void RecommendedDelaysDistribution(unsigned int numDelays, float roomVolume, float sum, float& earlyStart,
                                   float& earlyEnd, float& earlyDistribution, float& clusterStart, float& clusterEnd,
                                   float& clusterDistribution, float& reverbStart, float& modalDensity);

}  // namespace Lume
