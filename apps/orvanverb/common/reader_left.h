#pragma once

#include "orvanverb/common/program_error.h"

namespace program {

/// Whoever read a pipe had enough of it and went: to a filter that is nothing to speak of.
struct ReaderLeft : WorkError {
    using WorkError::WorkError;
};

}  // namespace program
