#pragma once

#include <vector>

#include "room/room.h"

namespace program {

/// A room of one source with the controls and levels of another engine, for a ring of eight: what decays there decays
/// in any layout.
/// @param position  of the source [m]
std::unique_ptr<Lume::Room> CopyForMeasuring(Lume::OrvanVerb const& engine, Lume::CartesianVector const& position);

/// The response of a room to an impulse in its first source: loudspeakers x samples. The room is configured for it.
std::vector<std::vector<float>> ImpulseResponse(Lume::Room& room, float sampleRate, double seconds);

}  // namespace program
