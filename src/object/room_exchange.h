#pragma once

#include <span>
#include <vector>

#include "object/orvanverb.h"
#include "room/room_state.h"

/// Between the object and the room on which it stands, for fronts: states with names, and positions.
/// Control thread.

/// The state of the object's room. What only the record knows goes along as a line of its own.
Lume::RoomState orvanverb_save_state(orvanverb_t* x);

/// Brings room and record to a state.
/// @throws as Lume::Room::RestoreState; room and record are as they were
void orvanverb_restore_state(orvanverb_t* x, Lume::RoomState const& state);

/// Where the record has its sources.
std::vector<Lume::CartesianVector> orvanverb_source_positions(orvanverb_t const* x);

/// Brings positions that a message has left in the record to what rooms hold: coordinates stay within reach, and a
/// source straight above or below keeps its azimuth.
/// @param before  where the sources were before the message
/// @return whether a position was out of reach
bool orvanverb_limit_positions(orvanverb_t* x, std::span<Lume::CartesianVector const> before);
