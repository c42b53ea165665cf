#include "orvanverb/common/messages.h"

#include <cstdio>

namespace program {

namespace {

bool quiet = false;
std::vector<std::string> warnings;

}  // namespace

void Say(std::string const& line) {
    if (!quiet) std::fprintf(stderr, "%s\n", line.c_str());
}

void Warn(std::string const& line) {
    std::fprintf(stderr, "%s\n", line.c_str());
    warnings.push_back(line);
}

std::vector<std::string> const& Warnings() {
    return warnings;
}

void BeQuiet() {
    quiet = true;
}

bool IsQuiet() {
    return quiet;
}

}  // namespace program
