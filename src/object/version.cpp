#include "object/version.h"

#include <cstdio>

std::string orvanverb_version() {
    constexpr int major = 4, minor = 2, bugfix = 6;
    char text[64];
    std::snprintf(text, sizeof text, "%d.%d.%d (Build %s)", major, minor, bugfix, __DATE__);
    return text;
}
