#include "orvanverb/common/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string>
#include <system_error>

#include "orvanverb/common/program_error.h"

namespace program {

void PrepareStandardStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) >= 0) continue;
        // The wrong way round. The lowest free number is the one that was found free.
        [[maybe_unused]] const int held = open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
    static char buffer[1 << 20];
    std::setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

bool FinishStandardOutput() {
    errno = 0;
    std::cout.flush();
    const bool flushed = std::fflush(stdout) == 0;
    if (flushed && std::ferror(stdout) == 0) return true;
    if (errno == EPIPE) return false;
    const std::string why = errno != 0 ? ": " + std::generic_category().message(errno) : std::string();
    throw WorkError("standard output: can't be written" + why);
}

}  // namespace program
