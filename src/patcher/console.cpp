#include "patcher/console.h"

#include <cstdarg>
#include <cstdio>
#include <string>

#include "patcher/host.h"
#include "patcher/object.h"

namespace max {

namespace {

void Line(ConsoleLevel level, t_object* x, char const* format, std::va_list arguments) {
    std::va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, again);
    va_end(again);
    if (length < 0) return;
    std::string text(static_cast<std::size_t>(length), '\0');
    std::vsnprintf(text.data(), text.size() + 1, format, arguments);
    Host::Get().Console(level, text, x != nullptr && x->o_state != nullptr ? x->o_state->box : nullptr);
}

}  // namespace

char const* ConsoleLevelName(ConsoleLevel level) {
    switch (level) {
        case ConsoleLevel::post:
            return "post";
        case ConsoleLevel::warn:
            return "warn";
        case ConsoleLevel::error:
            return "error";
        case ConsoleLevel::bug:
            break;
    }
    return "bug";
}

void post(char const* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Line(ConsoleLevel::post, nullptr, format, arguments);
    va_end(arguments);
}

void object_post(t_object* x, char const* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Line(ConsoleLevel::post, x, format, arguments);
    va_end(arguments);
}

void object_warn(t_object* x, char const* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Line(ConsoleLevel::warn, x, format, arguments);
    va_end(arguments);
}

void object_error(t_object* x, char const* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Line(ConsoleLevel::error, x, format, arguments);
    va_end(arguments);
}

void object_bug(t_object* x, char const* format, ...) {
    std::va_list arguments;
    va_start(arguments, format);
    Line(ConsoleLevel::bug, x, format, arguments);
    va_end(arguments);
}

}  // namespace max
