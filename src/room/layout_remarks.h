#pragma once

#include <string>
#include <vector>

#include "room/room.h"

namespace Lume {

/// What about a room's loudspeakers keeps its format from playing as it should, a line each (CheckLayout). For fronts,
/// which show it when loudspeakers were placed. Not for the audio thread.
std::vector<std::string> LayoutRemarks(Room const& room);

}  // namespace Lume
