#pragma once

#include <set>
#include <span>
#include <string>

#include "object/orvanverb.h"
#include "room/room_state.h"

/// Between the object and the room on which it stands, for fronts: states with names, and what to tell of a message.
/// Control thread.

/// The state of the object's room. What only the record knows goes along as a line of its own.
Lume::RoomState orvanverb_save_state(orvanverb_t* x);

/// Brings room and record to a state.
/// @throws as Lume::Room::RestoreState; room and record are as they were
void orvanverb_restore_state(orvanverb_t* x, Lume::RoomState const& state);

namespace orvanverb {

/// The object brings a value into its range without a word. This says so, once for each control.
class RangeRemarks {
public:
    /// What to say of a message before the object gets it; empty: nothing.
    std::string Of(std::string const& selector, std::span<t_atom const> atoms);

private:
    std::set<std::string> said;
};

}  // namespace orvanverb
