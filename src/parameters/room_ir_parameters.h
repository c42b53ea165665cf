#pragma once

namespace Lume {

/// The time structure of a room's impulse response, as absolute times. A plain record.
struct RoomIRParameters {
    RoomIRParameters(float newEarlyStart, float newEarlyEnd, float newEarlyDistribution, float newReserved,
                     float newClusterStart, float newClusterEnd, float newClusterDistribution, float newReverbStart,
                     float newModalDensity)
        : earlyStart(newEarlyStart),
          earlyEnd(newEarlyEnd),
          earlyDistribution(newEarlyDistribution),
          reserved(newReserved),
          clusterStart(newClusterStart),
          clusterEnd(newClusterEnd),
          clusterDistribution(newClusterDistribution),
          reverbStart(newReverbStart),
          modalDensity(newModalDensity) {}

    /// Forces the times into a consistent order and the modal density into what the channels can give, one after the
    /// other, each seeing the results of those before.
    /// @param sum  wanted sum of the late delays [s], see fdens
    void ApplyConstraints(float sum, unsigned int numChannels);

    float earlyStart;           // [ms]
    float earlyEnd;             // [ms]
    float earlyDistribution;    // 0 to 1
    float reserved;             // nothing reads it
    float clusterStart;         // [ms]
    float clusterEnd;           // [ms]
    float clusterDistribution;  // 0 to 1
    float reverbStart;          // [ms]
    float modalDensity;         // sum of the late delays [s]
};

}  // namespace Lume
