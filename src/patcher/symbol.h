#pragma once

#include "patcher/types.h"

namespace max {

/// The one symbol of a text.
t_symbol* gensym(char const* text);

/// Sorts symbols by their texts, byte by byte.
t_max_err symbolarray_sort(long count, t_symbol** symbols);

/// The host's own words.
struct t_common_symbols_table {
    t_symbol* s_long;      ///< "long": the type of a 32-bit integer attribute
    t_symbol* s_float32;   ///< "float32": the type of a single-precision attribute
    t_symbol* s_symbol;    ///< "symbol": the type of a symbol attribute
    t_symbol* s_atom;      ///< "atom": the type of an attribute that takes what it gets
    t_symbol* s_box;       ///< "box": the name space of the classes of object boxes
    t_symbol* s_dumpout;   ///< "dumpout": under which an object stores its dump outlet
    t_symbol* s_modified;  ///< "modified": the notification of a changed object
};

/// Fills the table at the first call and returns it.
t_common_symbols_table* common_symbols_init();

}  // namespace max
