#include "room/user_rooms.h"

#include <cstdlib>

namespace Lume {

std::filesystem::path UserRooms() {
    const auto variable = [](char const* name) {
        char const* const value = std::getenv(name);
        return std::filesystem::path(value != nullptr ? value : "");
    };
    if (const std::filesystem::path data = variable("XDG_DATA_HOME"); data.is_absolute())
        return data / "orvanverb/rooms";
    if (const std::filesystem::path home = variable("HOME"); home.is_absolute())
        return home / ".local/share/orvanverb/rooms";
    return {};
}

}  // namespace Lume
