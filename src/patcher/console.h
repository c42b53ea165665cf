#pragma once

#include "patcher/types.h"

namespace max {

/// Kinds of console lines.
enum class ConsoleLevel : int { post, warn, error, bug };

/// The word by which programs show a level: "post", "warn", "error" or "bug".
char const* ConsoleLevelName(ConsoleLevel level);

#if defined(__GNUC__)
#define ORVAN_PRINTF(text, first) __attribute__((format(printf, text, first)))
#else
#define ORVAN_PRINTF(text, first)
#endif

/// One line on the console, tied to no object.
void post(char const* format, ...) ORVAN_PRINTF(1, 2);

/// One line on the console, tied to an object (which may be null). The four differ in their level.
void object_post(t_object* x, char const* format, ...) ORVAN_PRINTF(2, 3);
void object_warn(t_object* x, char const* format, ...) ORVAN_PRINTF(2, 3);
void object_error(t_object* x, char const* format, ...) ORVAN_PRINTF(2, 3);
void object_bug(t_object* x, char const* format, ...) ORVAN_PRINTF(2, 3);

}  // namespace max
