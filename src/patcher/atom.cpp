#include "patcher/atom.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

#include "patcher/symbol.h"

namespace max {

namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";

/// 2^63, the first float that a long can't hold.
constexpr float longLimit = 9223372036854775808.0f;

bool IsNumber(std::string_view word) {
    bool digit = false;
    for (const char c : word) {
        if (c >= '0' && c <= '9') {
            digit = true;
        } else if (!(c == '.' || c == '+' || c == '-' || ((c == 'e' || c == 'E') && digit))) {
            return false;
        }
    }
    return digit;
}

/// Reads a number of either form into the atom; false if the word isn't one.
bool ParseNumber(std::string_view word, t_atom* atom) {
    if (!IsNumber(word)) return false;
    if (word.front() == '+') {  // from_chars knows no plus sign
        word.remove_prefix(1);
        if (word.front() == '-') return false;
    }
    char const* const end = word.data() + word.size();

    long whole = 0;
    const auto asLong = std::from_chars(word.data(), end, whole);
    if (asLong.ec == std::errc() && asLong.ptr == end) return atom_setlong(atom, whole) == MAX_ERR_NONE;

    // from_chars and not strtod: the decimal point must not depend on the locale of the process.
    double value = 0.0;
    const auto asDouble = std::from_chars(word.data(), end, value);
    if (asDouble.ptr != end || asDouble.ec == std::errc::invalid_argument) return false;
    if (asDouble.ec == std::errc::result_out_of_range) {
        const bool tiny = word.find("e-") != word.npos || word.find("E-") != word.npos;
        value = tiny ? 0.0 : std::numeric_limits<double>::infinity();
        if (word.front() == '-') value = -value;
    }
    return atom_setfloat(atom, value) == MAX_ERR_NONE;
}

}  // namespace

t_max_err atom_setlong(t_atom* atom, long value) {
    atom->a_type = A_LONG;
    atom->a_w.w_long = value;
    return MAX_ERR_NONE;
}

t_max_err atom_setfloat(t_atom* atom, double value) {
    atom->a_type = A_FLOAT;
    atom->a_w.w_float = static_cast<float>(value);
    return MAX_ERR_NONE;
}

t_max_err atom_setsym(t_atom* atom, t_symbol* value) {
    atom->a_type = A_SYM;
    atom->a_w.w_sym = value;
    return MAX_ERR_NONE;
}

t_max_err atom_setobj(t_atom* atom, void* value) {
    atom->a_type = A_OBJ;
    atom->a_w.w_obj = value;
    return MAX_ERR_NONE;
}

long atom_gettype(t_atom const* atom) {
    return atom->a_type;
}

long atom_getlong(t_atom const* atom) {
    if (atom->a_type == A_LONG) return atom->a_w.w_long;
    if (atom->a_type != A_FLOAT || std::isnan(atom->a_w.w_float)) return 0;
    if (atom->a_w.w_float >= longLimit) return std::numeric_limits<long>::max();
    if (atom->a_w.w_float < -longLimit) return std::numeric_limits<long>::min();
    return static_cast<long>(atom->a_w.w_float);
}

float atom_getfloat(t_atom const* atom) {
    if (atom->a_type == A_FLOAT) return atom->a_w.w_float;
    return atom->a_type == A_LONG ? static_cast<float>(atom->a_w.w_long) : 0.0f;
}

t_symbol* atom_getsym(t_atom const* atom) {
    return atom->a_type == A_SYM ? atom->a_w.w_sym : gensym("");
}

void* atom_getobj(t_atom const* atom) {
    return atom->a_type == A_OBJ ? atom->a_w.w_obj : nullptr;
}

std::vector<t_atom> ParseAtoms(std::string_view text) {
    std::vector<t_atom> atoms;
    for (std::size_t begin = text.find_first_not_of(blanks); begin != text.npos;) {
        const std::size_t end = text.find_first_of(blanks, begin);
        const std::string_view word = text.substr(begin, end - begin);
        t_atom atom{};
        if (!ParseNumber(word, &atom)) atom_setsym(&atom, gensym(std::string(word).c_str()));
        atoms.push_back(atom);
        begin = text.find_first_not_of(blanks, end);
    }
    return atoms;
}

std::string AtomText(t_atom const& atom) {
    if (atom.a_type == A_SYM) return atom.a_w.w_sym->s_name;
    char text[64];  // the longest float takes 39 digits, a point and six more
    if (atom.a_type == A_LONG) {
        std::snprintf(text, sizeof text, "%ld", atom.a_w.w_long);
    } else if (atom.a_type == A_FLOAT) {
        std::snprintf(text, sizeof text, "%f", static_cast<double>(atom.a_w.w_float));
    } else {
        return {};
    }
    return text;
}

}  // namespace max
