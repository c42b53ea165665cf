#include "object/version.h"

std::string orvanverb_version() {
    return ORVAN_VERSION " (Build " ORVAN_BUILD_DATE ")";
}
