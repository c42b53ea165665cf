#include "orvanverb/common/scratch_file.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "orvanverb/common/part_file.h"
#include "orvanverb/common/program_error.h"

namespace program {

namespace fs = std::filesystem;

ScratchFile::ScratchFile(std::string const& newOutput) : output(newOutput) {
    std::error_code none;
    const fs::path place = IsReplaceable(output) ? fs::weakly_canonical(fs::absolute(output, none), none).parent_path()
                                                 : fs::temp_directory_path(none);
    folder = place.empty() ? "." : place.string();
    std::string name = folder + "/orvanverb-XXXXXX";
    const int descriptor = mkstemp(name.data());
    if (descriptor < 0) Fail();
    unlink(name.c_str());
    file.reset(fdopen(descriptor, "w+b"));
    if (!file) {
        close(descriptor);
        Fail();
    }
}

void ScratchFile::Fail() const {
    throw WorkError(output + ": its samples can't be kept in " + folder +
                    " until their peak is known: " + std::generic_category().message(errno != 0 ? errno : EIO));
}

void ScratchFile::Write(float const* samples, std::size_t count) {
    errno = 0;
    if (std::fwrite(samples, sizeof *samples, count, file.get()) != count) Fail();
}

void ScratchFile::Rewind() {
    errno = 0;
    if (std::fflush(file.get()) != 0 || std::fseek(file.get(), 0, SEEK_SET) != 0) Fail();
}

std::size_t ScratchFile::Read(float* samples, std::size_t count) {
    errno = 0;
    const std::size_t got = std::fread(samples, sizeof *samples, count, file.get());
    if (std::ferror(file.get()) != 0) Fail();
    return got;
}

}  // namespace program
