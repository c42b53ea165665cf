#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "patcher/types.h"

namespace max {

t_max_err atom_setlong(t_atom* atom, long value);
t_max_err atom_setfloat(t_atom* atom, double value);
t_max_err atom_setsym(t_atom* atom, t_symbol* value);
t_max_err atom_setobj(t_atom* atom, void* value);

long atom_gettype(t_atom const* atom);
/// A fraction is cut; what isn't a number is 0; what a long can't hold becomes the nearest one that it can.
long atom_getlong(t_atom const* atom);
/// What isn't a number is 0.
float atom_getfloat(t_atom const* atom);
/// What isn't a symbol is the empty one.
t_symbol* atom_getsym(t_atom const* atom);
/// What isn't an object is null.
void* atom_getobj(t_atom const* atom);

/// Reads a text as the host reads what is typed: words apart by blanks; an integer literal is a long, a number with a
/// point or an exponent a float, anything else a symbol. An integer that a long can't hold is a float.
std::vector<t_atom> ParseAtoms(std::string_view text);

/// The text of one atom as consoles show it: "%ld", "%f", or the symbol's name.
std::string AtomText(t_atom const& atom);

}  // namespace max
