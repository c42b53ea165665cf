#include "orvanverb/whole_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <system_error>

#include "orvanverb/program_error.h"

namespace program {

void WriteWholeFile(std::string const& path, std::string_view bytes) {
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored))
        throw WorkError(path + ": can't be written: is there and is no file that could be replaced");
    std::string finalPath = std::filesystem::weakly_canonical(path, ignored).string();
    if (finalPath.empty()) finalPath = path;

    const std::string beside = finalPath + ".part" + std::to_string(getpid());
    errno = 0;
    std::ofstream file(beside, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file || std::rename(beside.c_str(), finalPath.c_str()) != 0) {
        const std::string why = std::generic_category().message(errno != 0 ? errno : EIO);
        std::remove(beside.c_str());
        throw WorkError(path + ": can't be written: " + why);
    }
}

}  // namespace program
