#include "pd/pd_presets.h"

#include <dlfcn.h>

#include <cstdlib>
#include <map>
#include <span>
#include <stdexcept>
#include <system_error>

#include "engine/room_controls.h"
#include "orvanverb/common/line_file.h"
#include "orvanverb/common/text.h"
#include "orvanverb/room/control.h"
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

void TakeLine(RoomFile& room, std::string const& name, std::span<std::string const> values) {
    program::CheckControl(name, values);
    const auto number = [&](std::size_t i) { return program::ParseNumber(values[i]).value(); };
    if (name == "numinternals") room.numInternals = static_cast<unsigned int>(number(0));
    for (std::size_t i = 0; i < Lume::roomControls.size(); ++i) {
        Lume::RoomControl const& control = Lume::roomControls[i];
        if (name == control.name)
            room.controls[i] = number(0);
        else if (control.attribute != nullptr && name == control.attribute)
            room.controls[i] = number(control.element);
    }
}

}  // namespace

RoomFile ReadRoomFile(std::filesystem::path const& path) {
    RoomFile room{{}, Lume::Room::usualInternals};
    for (Lume::RoomControl const& control : Lume::roomControls) room.controls.push_back(control.standard);
    program::ReadLineFile(path.string(),
                          [&room](std::span<std::string const> words) { TakeLine(room, words[0], words.subspan(1)); });
    return room;
}

std::filesystem::path FindRoomFile(std::string const& word, std::filesystem::path const& folder) {
    std::error_code error;
    if (auto path = folder / word; std::filesystem::is_regular_file(path, error)) return path;
    std::vector<std::string> names;
    for (std::filesystem::path const& file : AllRoomFiles(folder)) {
        if (file.stem() == word) return file;
        names.push_back(file.stem().string());
    }
    throw std::runtime_error("there is no room '" + word + "'" + program::DidYouMean(word, names) +
                             "; preset alone lists those that there are");
}

std::vector<std::filesystem::path> AllRoomFiles(std::filesystem::path const& folder) {
    std::map<std::string, std::filesystem::path> files;
    for (std::filesystem::path const& place : Folders(folder)) {
        std::error_code error;
        for (auto const& entry : std::filesystem::directory_iterator(place, error))
            if (entry.path().extension() == ending && entry.is_regular_file(error))
                files.emplace(entry.path().stem(), entry.path().lexically_normal());
    }
    std::vector<std::filesystem::path> paths;
    paths.reserve(files.size());
    for (auto const& [name, path] : files) paths.push_back(path);
    return paths;
}

}  // namespace pd
