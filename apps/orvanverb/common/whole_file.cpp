#include "orvanverb/common/whole_file.h"

#include <unistd.h>

#include <cerrno>

namespace program {

void WholeFile::Write(std::string_view bytes) {
    while (!bytes.empty()) {
        errno = 0;
        const ssize_t count = write(part.Descriptor(), bytes.data(), bytes.size());
        if (count > 0)
            bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EINTR)
            part.FailAsErrno();
    }
    part.Commit();
}

}  // namespace program
