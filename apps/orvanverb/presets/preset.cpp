#include "orvanverb/presets/preset.h"

#include <algorithm>
#include <fstream>
#include <map>
#include <optional>
#include <system_error>

#include "engine/room_controls.h"
#include "orvanverb/common/limits.h"
#include "orvanverb/common/line_file.h"
#include "orvanverb/common/program_error.h"
#include "orvanverb/common/text.h"
#include "room/user_rooms.h"

namespace program {

namespace {

constexpr char const* ending = ".room";
constexpr std::size_t longestTitle = 1000;
constexpr char const* measuredWord = "measured:";

std::vector<std::filesystem::path> Folders() {
    std::vector<std::filesystem::path> folders;
    if (const std::filesystem::path own = Lume::UserRooms(); !own.empty()) folders.push_back(own);
    std::error_code error;
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    if (!error) {
        folders.push_back((program / "../share/orvanverb/rooms").lexically_normal());
        folders.push_back((program / "../../../../examples/rooms").lexically_normal());
    }
    return folders;
}

}  // namespace

std::string Preset::Measured(std::string const& word) const {
    const std::vector<std::string> words = SplitWords(measured, ",");
    const auto at = std::find(words.begin(), words.end(), word);
    return at == words.end() || at + 1 == words.end() ? "-" : *(at + 1);
}

Preset ReadPreset(std::filesystem::path const& path) {
    Preset preset;
    preset.name = path.stem().string();
    preset.path = path;
    ForEachLine(path.string(), [&preset](Line const& line) {
        if (preset.settings.size() == mostSettings)
            throw WorkError(At(preset.path.string(), line.number) + tooManySettings);
        preset.settings.push_back({line.words.front(), {line.words.begin() + 1, line.words.end()}});
    });
    std::ifstream file(path);
    bool inTitle = true;
    for (std::string line; std::getline(file, line);) {
        if (!line.starts_with('#')) {
            inTitle = false;
            continue;
        }
        const std::string words = JoinWords(SplitWords(std::string_view(line).substr(1)));
        if (words.starts_with(measuredWord)) preset.measured = words.substr(std::string(measuredWord).size());
        if (!inTitle) continue;
        preset.title.append(preset.title.empty() ? "" : " ").append(words);
        const std::size_t end = preset.title.find(". ");
        inTitle = end == std::string::npos && preset.title.size() < longestTitle;
        preset.title.resize(std::min({preset.title.size(), end, longestTitle}));
    }
    return preset;
}

std::unique_ptr<Lume::Room> MakeRoom(Preset const& preset) {
    unsigned int internals = Lume::Room::usualInternals;
    for (Preset::Setting const& setting : preset.settings)
        if (setting.name == "numinternals" && setting.values.size() == 1)
            internals = ParseCount(setting.values[0]).value_or(internals);
    auto room = std::make_unique<Lume::Room>(1, 8, internals);
    for (Preset::Setting const& setting : preset.settings) {
        if (setting.name == "numinternals") continue;
        std::size_t taken = 0;
        for (std::size_t i = 0; i < Lume::roomControls.size(); ++i) {
            Lume::RoomControl const& control = Lume::roomControls[i];
            const std::string attribute = control.attribute != nullptr ? control.attribute : control.name;
            if (attribute != setting.name || control.element >= setting.values.size()) continue;
            const std::optional<float> value = ParseNumber(setting.values[control.element]);
            if (value && room->Set(i, *value)) ++taken;
        }
        if (taken == 0 || taken != setting.values.size())
            throw WorkError(preset.path.string() + ": '" + setting.name + " " + JoinWords(setting.values) +
                            "' is no control of the room with its values");
    }
    return room;
}

std::vector<std::filesystem::path> AllPresets() {
    std::map<std::string, std::filesystem::path> found;
    for (std::filesystem::path const& folder : Folders()) {
        std::error_code error;
        for (auto const& entry : std::filesystem::directory_iterator(folder, error))
            if (entry.path().extension() == ending) found.emplace(entry.path().stem().string(), entry.path());
    }
    std::vector<std::filesystem::path> paths;
    paths.reserve(found.size());
    for (auto const& [name, path] : found) paths.push_back(path);
    return paths;
}

std::string FindPreset(std::string const& word) {
    std::error_code error;
    if (word == "-" || (std::filesystem::exists(word, error) && !std::filesystem::is_directory(word, error)))
        return word;
    std::vector<std::string> names;
    for (std::filesystem::path const& path : AllPresets()) {
        if (path.stem() == word || path.filename() == word) return path.string();
        names.push_back(path.stem().string());
    }
    std::string message =
        "--preset " + word + ": there is no such file, and no preset of this name" + DidYouMean(word, names);
    if (!names.empty()) message.append("; there are ").append(JoinWords(names));
    throw WorkError(message);
}

}  // namespace program
