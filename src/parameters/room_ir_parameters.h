#pragma once

namespace Lume {

/// The time structure of a room's impulse response, as absolute times. A plain record.
struct RoomIRParameters {
    RoomIRParameters(float earlyStart, float earlyEnd, float earlyDistribution, float reserved, float clusterStart,
                     float clusterEnd, float clusterDistribution, float reverbStart, float modalDensity)
        : earlyStart(earlyStart),
          earlyEnd(earlyEnd),
          earlyDistribution(earlyDistribution),
          reserved(reserved),
          clusterStart(clusterStart),
          clusterEnd(clusterEnd),
          clusterDistribution(clusterDistribution),
          reverbStart(reverbStart),
          modalDensity(modalDensity) {}

    float earlyStart;           // [ms]
    float earlyEnd;             // [ms]
    float earlyDistribution;    // 0 to 1
    float reserved;             // nothing reads it
    float clusterStart;         // [ms]
    float clusterEnd;           // [ms]
    float clusterDistribution;  // 0 to 1
    float reverbStart;          // [ms]
    float modalDensity;
};

}  // namespace Lume
