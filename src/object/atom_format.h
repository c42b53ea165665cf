#pragma once

#include "object/host_api.h"

namespace orvanmax {

/// Whether a list begins with atoms of these types: f a float, i or l a long, n a number of either kind, s a symbol.
/// False for other letters and if the list is shorter than the format; an empty format fits anything.
bool CheckAtomsFormat(char const* format, t_atom const* atoms, long count);

/// The number of an atom, or the default if it isn't one.
float atom_getnumber(t_atom const* atom, float defaultValue);

}  // namespace orvanmax
