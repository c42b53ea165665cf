#pragma once

/// What the engine takes from the standard library that this compiler's library doesn't have yet. Every source is
/// compiled with this header in front. A library that has these makes it ambiguous, and then it can go.

#if defined(__cplusplus)

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <system_error>
#include <type_traits>

namespace std {

template <class To, class From>
To bit_cast(From const& from) noexcept {
    static_assert(sizeof(To) == sizeof(From) && is_trivially_copyable_v<To> && is_trivially_copyable_v<From>);
    To to;
    __builtin_memcpy(&to, &from, sizeof to);
    return to;
}

template <class Array>
unique_ptr<Array> make_unique_for_overwrite(size_t size) {
    return unique_ptr<Array>(new remove_extent_t<Array>[size]);
}

namespace ranges {

template <class Range, class Predicate>
bool all_of(Range&& range, Predicate predicate) {
    return std::all_of(begin(range), end(range), predicate);
}

}  // namespace ranges

/// Differs from the standard in what it also takes: blanks and a plus in front, hexadecimal numbers.
template <class Number>
enable_if_t<is_floating_point_v<Number>, from_chars_result> from_chars(char const* first, char const* last,
                                                                       Number& value) {
    const string text(first, last);
    char* end = nullptr;
    Number number;
    if constexpr (is_same_v<Number, float>)
        number = strtof(text.c_str(), &end);
    else
        number = strtod(text.c_str(), &end);
    if (end == text.c_str()) return {first, errc::invalid_argument};
    value = number;
    return {first + (end - text.c_str()), errc{}};
}

/// As few digits as read back to the same number.
inline to_chars_result to_chars(char* first, char* last, float value) {
    int length = 0;
    for (int digits = 1; digits <= 9; ++digits) {
        length = snprintf(first, static_cast<size_t>(last - first), "%.*g", digits, static_cast<double>(value));
        if (strtof(first, nullptr) == value) break;
    }
    return {first + length, errc{}};
}

}  // namespace std

#endif
