#pragma once

#include <span>
#include <string>
#include <vector>

#include "patcher/types.h"
#include "pd/pd_api.h"

/// Messages of Pd as the object takes them, and back.
namespace pd {

/// Pd has one kind of number. Whole ones become longs, so that they pass where the object wants an index; only -0 stays
/// a float, as its sign tells directions apart. Pointers become atoms that are neither number nor symbol.
std::vector<max::t_atom> FromPd(std::span<t_atom const> atoms);

/// The same for a flat state: numbers may also be symbols that spell them.
std::vector<max::t_atom> StateFromPd(std::span<t_atom const> atoms);

std::vector<t_atom> ToPd(std::vector<max::t_atom> const& atoms);

/// A state with names for a patch file, in one message: its words, with a stroke between each two lines. Pd writes
/// numbers with six digits; spelled by symbols, they are read back as the same bits.
std::vector<t_atom> StateToFile(std::string const& text);
/// The text of such a message.
std::string StateText(std::span<t_atom const> atoms);
/// Atoms as they are typed, with a blank between each two.
std::string WordsText(std::span<t_atom const> atoms);

}  // namespace pd
