#pragma once

#include "patcher/types.h"

namespace max {

/// Calls a registered function with the arguments given.
///
/// Objects register functions that take their own record and a short or long count of atoms; the host knows the record
/// as a void* and counts in longs. All calling conventions of our platforms pass these alike, as the API relies on,
/// but a sanitizer that compares function types must not look.
template <class Result, class... Arguments>
#if defined(__clang__)
__attribute__((no_sanitize("function")))
#endif
Result
Call(method function, Arguments... arguments) {
    return reinterpret_cast<Result (*)(Arguments...)>(function)(arguments...);
}

}  // namespace max
