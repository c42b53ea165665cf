#include "orvanverb/common/messages.h"

#include <cstdio>

namespace program {

void Say(std::string const& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
}

}  // namespace program
