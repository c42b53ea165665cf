#pragma once

#include <span>
#include <string>
#include <vector>

#include "object/orvanverb.h"
#include "room/control_range.h"
#include "room/room_state.h"

/// Between the object and the room on which it stands, for fronts: states with names, and what to tell of a message.
/// Control thread.

/// The state of the object's room. What only the record knows goes along as a line of its own.
Lume::RoomState orvanverb_save_state(orvanverb_t* x);

/// Brings room and record to a state.
/// @throws as Lume::Room::RestoreState; room and record are as they were
void orvanverb_restore_state(orvanverb_t* x, Lume::RoomState const& state);

namespace orvanverb {

/// The object brings a value into its range without a word. What to say of it, before the object gets the message.
std::vector<std::string> RangeRemarksOf(Lume::RangeRemarks& remarks, std::string const& selector,
                                        std::span<t_atom const> atoms);

}  // namespace orvanverb
