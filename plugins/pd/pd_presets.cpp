#include "pd/pd_presets.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <system_error>

#include "engine/room_controls.h"
#include "room/control_range.h"
#include "room/room.h"
#include "room/user_rooms.h"

namespace pd {

namespace {

constexpr char const* ending = ".room";

/// Where the external itself was loaded from.
std::filesystem::path OwnFolder() {
    Dl_info info{};
    static const char here = 0;
    if (dladdr(&here, &info) == 0 || info.dli_fname == nullptr) return {};
    return std::filesystem::path(info.dli_fname).parent_path();
}

std::vector<std::filesystem::path> Folders(std::filesystem::path const& patch) {
    std::vector<std::filesystem::path> folders{patch};
    if (const std::filesystem::path own = Lume::UserRooms(); !own.empty()) folders.push_back(own);
    folders.push_back(OwnFolder() / "rooms");
    folders.push_back(OwnFolder() / "../../../../examples/rooms");  // of the tree that it was built in
    return folders;
}

void TakeLine(RoomFile& room, std::string const& line) {
    std::istringstream words(line);
    std::string attribute, word;
    words >> attribute;
    for (unsigned int element = 0; words >> word; ++element) {
        char* end = nullptr;
        const float value = std::strtof(word.c_str(), &end);
        if (*end != '\0') throw std::runtime_error("'" + word + "' is no number");
        if (attribute == "numinternals" && element == 0) {
            room.numInternals = static_cast<unsigned int>(std::clamp(value, 2.0f, 16.0f));
            continue;
        }
        const auto control =
            std::find_if(Lume::roomControls.begin(), Lume::roomControls.end(), [&](Lume::RoomControl const& each) {
                return each.attribute != nullptr && attribute == each.attribute && element == each.element;
            });
        if (control == Lume::roomControls.end())
            throw std::runtime_error(element == 0 ? "a room has no '" + attribute + "'"
                                                  : attribute + ": '" + word + "' is a value too many");
        if (!Lume::IsInRange(*control, value))
            throw std::runtime_error(attribute + ": " + word + " is not " + Lume::RangeText(*control));
        room.controls[static_cast<std::size_t>(control - Lume::roomControls.begin())] = value;
    }
}

}  // namespace

RoomFile ReadRoomFile(std::filesystem::path const& path) {
    RoomFile room{{}, Lume::Room::usualInternals};
    for (Lume::RoomControl const& control : Lume::roomControls) room.controls.push_back(control.standard);
    std::ifstream file(path);
    if (!file) throw std::runtime_error(path.string() + ": can't be read");
    std::size_t number = 0;
    for (std::string line; std::getline(file, line);) {
        ++number;
        line.erase(std::min(line.find('#'), line.size()));
        try {
            TakeLine(room, line);
        } catch (std::runtime_error const& error) {
            throw std::runtime_error(path.string() + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    return room;
}

std::filesystem::path FindRoomFile(std::string const& word, std::filesystem::path const& folder) {
    std::error_code error;
    if (auto path = folder / word; std::filesystem::is_regular_file(path, error)) return path;
    for (std::filesystem::path const& file : AllRoomFiles(folder))
        if (file.stem() == word) return file;
    throw std::runtime_error("there is no room '" + word + "'; preset alone lists those that there are");
}

std::vector<std::filesystem::path> AllRoomFiles(std::filesystem::path const& folder) {
    std::map<std::string, std::filesystem::path> files;
    for (std::filesystem::path const& place : Folders(folder)) {
        std::error_code error;
        for (auto const& entry : std::filesystem::directory_iterator(place, error))
            if (entry.path().extension() == ending) files.emplace(entry.path().stem(), entry.path().lexically_normal());
    }
    std::vector<std::filesystem::path> paths;
    paths.reserve(files.size());
    for (auto const& [name, path] : files) paths.push_back(path);
    return paths;
}

}  // namespace pd
