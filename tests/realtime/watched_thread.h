#pragma once

#include <functional>

/// What must not happen on a thread that makes sound, as far as it did. Under a sanitizer nothing is seen.
struct Trespasses {
    long allocations = 0;  ///< by new, malloc and its kin
    long frees = 0;
    long locks = 0;
    long systemCalls = 0;  ///< answered with an error: none is carried out
};

/// Does work on a thread of its own that is watched, to its end.
Trespasses WatchThread(std::function<void()> const& work);
