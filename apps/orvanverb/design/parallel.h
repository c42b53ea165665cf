#pragma once

#include <cstddef>
#include <functional>

namespace program {

/// Calls a function with 0 ... count - 1, on all processors. What it does for one number must not touch another's; the
/// result then doesn't depend on how many processors there are. What it throws ends the work, and comes out of it.
void ForEachNumber(std::size_t count, std::function<void(std::size_t)> const& function);

}  // namespace program
