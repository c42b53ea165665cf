#pragma once

#include "geometry/cartesian_vector.h"

namespace live {

/// A place as the listener sees it: degrees, azimuth positive to the right, and metres.
struct Direction {
    float azimuth = 0.0f, elevation = 0.0f, distance = 1.0f;
};

Direction DirectionOf(Lume::CartesianVector const& position);

/// A distance that is next to nothing keeps the direction: the room hears everything below 0.3 m alike.
Lume::CartesianVector PositionAt(Direction const& direction);

/// A linear level in dB, -120 for all that is below.
float Decibels(float linear);

}  // namespace live
