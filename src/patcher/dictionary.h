#pragma once

#include <string_view>
#include <vector>

#include "patcher/types.h"

namespace max {

/// The attributes that the text of an object box names, in the order typed: @numsources 2 @gain -3.
struct t_dictionary {
    struct Entry {
        t_symbol* name;
        std::vector<t_atom> value;
        bool reported;  ///< that the class doesn't know it; once is enough
    };
    std::vector<Entry> entries;
};

/// Splits the atoms of an object box: what stands before the first word that begins with @ stays, the rest goes into
/// the dictionary. A name given twice counts where and as it was given last.
void MoveAttributes(std::vector<t_atom>& atoms, t_dictionary& dictionary);

/// The creation dictionary among the arguments of a constructor, or null.
t_dictionary* object_dictionaryarg(long count, t_atom* atoms);

/// Applies a creation dictionary to an object: first the class's defaults of the attributes that it doesn't name, in
/// the order of their registration (if the class asks for it), then those that it names, in the order typed; each
/// through filter and setter. Names that the class doesn't know are warned about.
void attr_dictionary_process(void* x, t_dictionary* dictionary);

}  // namespace max
