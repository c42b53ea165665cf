#pragma once

#include "geometry/cartesian_vector.h"

namespace Lume {

/// What the stereo panners share.

/// The listener's azimuth [rad]: 0 ahead, positive on the right, in (-pi/2, 3 pi/2].
float ListenerAzimuthRad(CartesianVector const& position);

/// How much the direction of a source counts, from 0 to 1: the distance in the horizontal plane up to 1 m. A source
/// near the centre, or above it, pulls towards both channels.
float Directivity(CartesianVector const& position);

}  // namespace Lume
