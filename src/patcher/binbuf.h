#pragma once

#include <vector>

#include "patcher/types.h"

namespace max {

/// A store of messages, each a list of atoms: what a preset keeps.
struct t_binbuf {
    std::vector<std::vector<t_atom>> records;
};

/// Starts a new message with the atoms. A selector that isn't null comes before them.
void binbuf_insert(void* binbuf, t_symbol* selector, short count, t_atom* atoms);
/// Continues the last message with the atoms.
void binbuf_append(void* binbuf, t_symbol* selector, short count, t_atom* atoms);

}  // namespace max
