#pragma once

#include "patcher/types.h"

namespace max {

/// An outlet of an object.
struct t_outlet {
    Box* box;     ///< where its lists go
    long index;   ///< from the left, from 0
    bool signal;  ///< carries a signal, not messages
};

/// Adds an outlet at the right: "signal" for a signal, null for messages.
void* outlet_new(void* x, char const* type);

/// Send a list, or a message with any selector, out of an outlet. The selector of a list is null.
void* outlet_list(void* outlet, t_symbol* selector, short count, t_atom* atoms);
void* outlet_anything(void* outlet, t_symbol* selector, short count, t_atom* atoms);

}  // namespace max
