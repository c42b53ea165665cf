#pragma once

#include "orvanverb/hrtf/ears_cache.h"
#include "orvanverb/options/options.h"

namespace program {

/// What becomes of measurements, as options ask for it.
inline EarsCache::Fitting FittingOf(Options const& options) {
    using enum EarsCache::Fitting;
    return options.dryRun ? quick : options.noCache ? anew : kept;
}

}  // namespace program
