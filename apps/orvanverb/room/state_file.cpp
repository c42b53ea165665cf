#include "orvanverb/room/state_file.h"

#include <cctype>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <system_error>

#include "orvanverb/common/program_error.h"

namespace program {

namespace {

/// Where relative paths in a file start from.
std::filesystem::path FolderOf(std::string const& path) {
    return std::filesystem::absolute(path).parent_path();
}

}  // namespace

Lume::RoomState ReadState(std::string const& path) {
    std::ifstream file(path == "-" ? "/dev/stdin" : path, std::ios::binary);
    if (!file) throw WorkError(path + ": " + std::generic_category().message(errno));
    if (std::filesystem::is_directory(path)) throw WorkError(path + ": is a directory");
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    Lume::RoomState state;
    try {
        state = Lume::RoomState::Parse(text, FolderOf(path));
    } catch (std::invalid_argument const& error) {
        const std::string why = error.what();
        throw WorkError(path + (std::isdigit(static_cast<unsigned char>(why[0])) ? ":" : ": ") + why);
    }
    if (state.numSources == 0 || state.numSpeakers == 0 || state.numInternals == 0)
        throw WorkError(path + ": no state, a line with numsources, numspeakers or numinternals is missing");
    return state;
}

std::string StateText(Lume::RoomState const& state, std::string const& path) {
    return state.Text(FolderOf(path));
}

}  // namespace program
