#include "orvanverb/common/whole_file.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>
#include <utility>

#include "orvanverb/common/program_error.h"

namespace program {

WholeFile::WholeFile(std::string newPath) : path(std::move(newPath)) {
    std::error_code ignored;
    if (std::filesystem::exists(path, ignored) && !std::filesystem::is_regular_file(path, ignored))
        throw WorkError(path + ": can't be written: is there and is no file that could be replaced");
    finalPath = std::filesystem::weakly_canonical(path, ignored).string();
    if (finalPath.empty()) finalPath = path;
    const std::string beside = finalPath + ".part" + std::to_string(getpid());
    errno = 0;
    file.open(beside, std::ios::binary);
    if (!file) Fail();
    partialPath = beside;
}

WholeFile::~WholeFile() {
    if (!partialPath.empty()) std::remove(partialPath.c_str());
}

void WholeFile::Fail() const {
    throw WorkError(path + ": can't be written: " + std::generic_category().message(errno != 0 ? errno : EIO));
}

void WholeFile::Write(std::string_view bytes) {
    errno = 0;
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file || std::rename(partialPath.c_str(), finalPath.c_str()) != 0) Fail();
    partialPath.clear();
}

}  // namespace program
