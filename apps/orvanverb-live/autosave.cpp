#include "orvanverb-live/autosave.h"

#include <fstream>
#include <sstream>

#include "orvanverb/common/messages.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/whole_file.h"
#include "orvanverb/room/state_file.h"
#include "room/room_state.h"

namespace live {

void RequireAutosave(std::optional<std::string> const& path) {
    if (!path) return;
    if (std::ifstream file(*path); file) {
        std::stringstream text;
        text << file.rdbuf();
        if (!text.str().empty() && !Lume::RoomState::IsState(text.str()))
            throw program::WorkError("--autosave " + *path + ": is there already, and is no state of a room");
    }
    program::WholeFile writable(*path);  // tells now if it isn't
}

void Autosave(std::optional<std::string> const& path, Desk const& desk) {
    if (!path) return;
    program::WholeFile(*path).Write(program::StateText(desk.StateToKeep(), *path));
    program::Say(*path + ": the state was saved");
}

}  // namespace live
