#pragma once

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Panning on the unit square: a direction becomes a point of the square (panc), and a recursive law shares the point
/// out among the loudspeakers on its border (panr4 ... panr12).

/// Maps a direction on the square: its corners are where four given loudspeakers stand, px rises to the right and py to
/// the front. Sources nearer than 1 m, high or low move towards the centre.
/// @param azimuth    the listener's [degrees]
/// @param elevation  [degrees]
/// @param distance   [m]
/// @param corners    the listener's azimuths [degrees] of the corners front left, front right, rear right, rear left
/// @param px, py     become -1 ... 1
void panc(float azimuth, float elevation, float distance, float const* corners, float& px, float& py);

/// The same for a position.
void panc(CartesianVector const& position, float const* corners, float& px, float& py);

/// The laws: powers, of sum 1, of 4 to 12 loudspeakers for the point x, y. The order is clockwise from front left, but
/// panr4 to panr12 put the additional loudspeakers where two or four neighbours share the source.
/// @param gains  as many as the name says
void panr4(float x, float y, float* gains);
void panr5(float x, float y, float* gains);
void panr6(float x, float y, float* gains);
void panr7(float x, float y, float* gains);
void panr8(float x, float y, float* gains);
void panr12(float x, float y, float* gains);

}  // namespace Lume
