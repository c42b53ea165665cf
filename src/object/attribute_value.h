#pragma once

#include "object/host_api.h"

namespace orvanmax {

/// The value of an attribute of an object, or of an attribute of an attribute, as the host hands it out; its memory
/// goes back to the host.
class AttributeValue {
public:
    AttributeValue(void* object, t_symbol* name) : error(object_attr_getvalueof(object, name, &count, &atoms)) {}
    ~AttributeValue() {
        if (atoms != nullptr) sysmem_freeptr(atoms);
    }
    AttributeValue(AttributeValue const&) = delete;
    AttributeValue& operator=(AttributeValue const&) = delete;

    bool HasAtoms() const { return error == MAX_ERR_NONE && atoms != nullptr && count > 0; }
    /// True if the value is the one long 1: a switch that is on.
    bool IsOne() const { return HasAtoms() && atom_gettype(atoms) == A_LONG && atom_getlong(atoms) == 1; }

    long count = 0;
    t_atom* atoms = nullptr;
    t_max_err error;
};

}  // namespace orvanmax
