#pragma once

#include <memory>

#include "pan/binaural/binaural_panning.h"
#include "room/room_state.h"

namespace Lume {

/// Ears for one room, made from a file beside the audio thread: Room::PrepareEars makes them, Room::TakeEars takes
/// them.
struct Ears {
    std::unique_ptr<BinauralPanning> filters;
    EarsFile file;
};

}  // namespace Lume
