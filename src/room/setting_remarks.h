#pragma once

#include <set>
#include <string>
#include <vector>

#include "room/room.h"

namespace Lume {

/// What fronts say of a room's settings after a change: what can't be meant, though the room takes it. Each remark is
/// made once, whatever numbers it holds, so that nobody is told of every step of a movement. Not for the audio thread.
class SettingRemarks {
public:
    /// Controls above those that are meant to lie above them: a low crossover above the high one, a layer that starts
    /// after its end. And, if loudspeakers were placed, what is wrong with where they stand.
    /// @param speakersMoved  since the last call
    std::vector<std::string> Of(Room const& room, bool speakersMoved);

private:
    std::set<std::string> said;
};

}  // namespace Lume
