#include "pd/pd_atoms.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>

#include "patcher/atom.h"
#include "patcher/symbol.h"

namespace pd {

namespace {

static_assert(sizeof(t_float) == sizeof(float) && sizeof(t_sample) == sizeof(float), "built for single precision");

/// 2^63, the first float that a long can't hold.
constexpr float longLimit = 9223372036854775808.0f;

void SetNumber(max::t_atom& atom, float value) {
    const bool whole = std::trunc(value) == value && std::fabs(value) < longLimit;
    if (whole && !(value == 0.0f && std::signbit(value))) {
        max::atom_setlong(&atom, static_cast<long>(value));
    } else {
        max::atom_setfloat(&atom, static_cast<double>(value));
    }
}

max::t_atom FromPd(t_atom const& from) {
    max::t_atom atom{};
    switch (from.a_type) {
        case A_FLOAT:
            SetNumber(atom, from.a_w.w_float);
            break;
        case A_SYMBOL:
            max::atom_setsym(&atom, max::gensym(from.a_w.w_symbol->s_name));
            break;
        default:
            max::atom_setobj(&atom, nullptr);
    }
    return atom;
}

max::t_atom StateFromPd(t_atom const& from) {
    max::t_atom atom = FromPd(from);
    if (from.a_type != A_SYMBOL) return atom;
    char const* const text = from.a_w.w_symbol->s_name;
    char const* const end = text + std::strlen(text);
    float value = 0.0f;
    const auto [rest, error] = std::from_chars(text, end, value);
    if (error == std::errc() && rest == end) SetNumber(atom, value);
    return atom;
}

bool IsNumber(max::t_atom const& atom) {
    return atom.a_type == max::A_LONG || atom.a_type == max::A_FLOAT;
}

t_atom ToPd(max::t_atom const& from) {
    t_atom atom{};
    if (IsNumber(from)) {
        SETFLOAT(&atom, max::atom_getfloat(&from));
    } else {
        SETSYMBOL(&atom, gensym(max::atom_getsym(&from)->s_name));
    }
    return atom;
}

t_atom ToFile(max::t_atom const& from) {
    t_atom atom = ToPd(from);
    if (!IsNumber(from)) return atom;
    char text[32];
    *std::to_chars(text, text + sizeof text - 1, atom.a_w.w_float).ptr = '\0';
    SETSYMBOL(&atom, gensym(text));
    return atom;
}

template <class To, class Atoms, class Function>
std::vector<To> Each(Atoms const& atoms, Function function) {
    std::vector<To> result;
    result.reserve(atoms.size());
    std::transform(atoms.begin(), atoms.end(), std::back_inserter(result), function);
    return result;
}

}  // namespace

std::vector<max::t_atom> FromPd(std::span<t_atom const> atoms) {
    return Each<max::t_atom>(atoms, [](t_atom const& atom) { return FromPd(atom); });
}

std::vector<max::t_atom> StateFromPd(std::span<t_atom const> atoms) {
    return Each<max::t_atom>(atoms, [](t_atom const& atom) { return StateFromPd(atom); });
}

std::vector<t_atom> ToPd(std::vector<max::t_atom> const& atoms) {
    return Each<t_atom>(atoms, [](max::t_atom const& atom) { return ToPd(atom); });
}

std::vector<t_atom> StateToFile(std::vector<max::t_atom> const& atoms) {
    return Each<t_atom>(atoms, [](max::t_atom const& atom) { return ToFile(atom); });
}

}  // namespace pd
