#include "pd/pd_atoms.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <sstream>

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

constexpr char const* lineEnd = "/";
/// In front of the ears' checksum, which could be read as a number.
constexpr char checksumMark = 'x';
constexpr char const* earsName = "ears ";

std::string AtomWord(t_atom const& atom) {
    if (atom.a_type != A_FLOAT) return atom.a_type == A_SYMBOL ? atom.a_w.w_symbol->s_name : "";
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, atom.a_w.w_float).ptr};
}

t_atom Symbol(std::string const& word) {
    t_atom atom{};
    SETSYMBOL(&atom, gensym(word.c_str()));
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

std::vector<t_atom> StateToFile(std::string const& text) {
    std::vector<t_atom> atoms;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (!atoms.empty()) atoms.push_back(Symbol(lineEnd));
        const bool ears = line.starts_with(earsName);
        if (ears) line.insert(std::strlen(earsName), 1, checksumMark);
        std::istringstream words(line);
        for (std::string word; words >> word;) {
            if (ears && atoms.back().a_w.w_symbol->s_name[0] == checksumMark) {
                // The file's name, with all its blanks.
                std::string rest;
                std::getline(words, rest);
                word += rest;
            }
            atoms.push_back(Symbol(word));
        }
    }
    return atoms;
}

std::string StateText(std::span<t_atom const> atoms) {
    std::string text, line;
    const auto endLine = [&] {
        if (line.starts_with(std::string(earsName) + checksumMark)) line.erase(std::strlen(earsName), 1);
        text.append(line).push_back('\n');
        line.clear();
    };
    for (t_atom const& atom : atoms) {
        const std::string word = AtomWord(atom);
        if (word == lineEnd)
            endLine();
        else
            line.append(line.empty() ? "" : " ").append(word);
    }
    endLine();
    return text;
}

std::string WordsText(std::span<t_atom const> atoms) {
    std::string text;
    for (t_atom const& atom : atoms) text.append(text.empty() ? "" : " ").append(AtomWord(atom));
    return text;
}

}  // namespace pd
