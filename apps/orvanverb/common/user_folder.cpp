#include "orvanverb/common/user_folder.h"

#include <cstdlib>

namespace program {

namespace fs = std::filesystem;

fs::path UserFolder(char const* variable, char const* usual) {
    for (auto const& [name, below] : {std::pair{variable, fs::path()}, {"HOME", fs::path(usual)}})
        if (char const* const value = std::getenv(name); value != nullptr && fs::path(value).is_absolute())
            return fs::path(value) / below / "orvanverb";
    return {};
}

}  // namespace program
