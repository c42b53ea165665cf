#include "object/object_state.h"

#include <algorithm>
#include <string>
#include <vector>

#include "object/attribute_reflection.h"
#include "object/attribute_value.h"
#include "object/console_lines.h"
#include "object/orvanmax_common_symbols.h"

namespace orvanmax {

namespace {

/// What a state can hold.
bool CanBeStored(t_atom const& atom) {
    const long type = atom_gettype(&atom);
    return type == A_LONG || type == A_FLOAT || type == A_SYM;
}

}  // namespace

t_max_err orvanmax_getvalueof(t_object* x, long* count, t_atom** atoms) {
    if (count == nullptr || atoms == nullptr) {
        object_bug(x, "orvanmax_getvalueof : there is a problem");
        return MAX_ERR_NONE;
    }
    const std::vector<std::string> names = GetListOfUserAttributes(x);
    const unsigned long expected = GetNumberOfAtomsToStoreTheseAttributes(x, names);
    if (*count < 1 || *atoms == nullptr) {
        *atoms = static_cast<t_atom*>(sysmem_newptr(static_cast<long>(expected * sizeof(t_atom))));
        if (*atoms == nullptr) {
            *count = 0;
            return MAX_ERR_NONE;
        }
        *count = static_cast<long>(expected);
        std::fill_n(*atoms, expected, t_atom{});  // a place that nothing is stored in is empty
    } else {
        object_warn(x, "orvanmax_getvalueof : memory passed in");
    }

    unsigned long stored = 0;
    for (std::string const& name : names) {
        const AttributeValue value(x, gensym(name.c_str()));
        if (value.error != MAX_ERR_NONE) {
            object_bug(x, "orvanmax_getvalueof : %s in object_attr_getvalueof (%s)", HostErrorName(value.error),
                       name.c_str());
            continue;
        }
        if (value.atoms == nullptr || value.count < 0) {
            object_bug(x, "orvanmax_getvalueof : error in object_attr_getvalueof %s (tmpac=%ld)", name.c_str(),
                       value.count);
            continue;
        }
        for (long i = 0; i < value.count; ++i) {
            if (CanBeStored(value.atoms[i])) {
                (*atoms)[stored++] = value.atoms[i];
            } else {
                object_bug(x, "orvanmax_getvalueof : unknown atom type");
            }
        }
    }
    if (stored != expected)
        object_error(x, "%d atoms allocated but %d atoms stored by the pattrstorage", static_cast<int>(expected),
                     static_cast<int>(stored));
    return MAX_ERR_NONE;
}

t_max_err orvanmax_setvalueof(t_object* x, long count, t_atom* atoms) {
    if (count == 0 || atoms == nullptr) return MAX_ERR_NONE;
    const std::vector<std::string> names = GetListOfUserAttributes(x);
    const auto total = static_cast<long>(GetNumberOfAtomsToStoreTheseAttributes(x, names));
    if (count != total) {
        object_error(x, "setvalueof error (received %d atoms. %d atoms were expected)", static_cast<int>(count),
                     static_cast<int>(total));
        return MAX_ERR_GENERIC;
    }

    long index = 0;
    for (std::string const& name : names) {
        const unsigned long length = GetNumberOfAtomsNeededToStoreAttribute(x, name);
        std::vector<t_atom> value;
        value.reserve(length);
        while (value.size() < length) {
            if (index >= total) {
                object_error(x, "error reading atoms in orvanmax_setvalueof");
                return MAX_ERR_GENERIC;
            }
            t_atom const& atom = atoms[index++];
            if (CanBeStored(atom)) {
                value.push_back(atom);
            } else {
                object_warn(x, "unknown atom type in orvanmax_setvalueof");
            }
        }
        if (value.empty()) continue;
        const t_max_err error =
            object_attr_setvalueof(x, gensym(name.c_str()), static_cast<long>(length), value.data());
        if (error != MAX_ERR_NONE)
            object_error(x, "%s in object_attr_setvalueof %s", HostErrorName(error), name.c_str());
    }
    object_post(x, "%d attributes (%d atoms) restored from the pattrstorage", static_cast<int>(names.size()),
                static_cast<int>(total));
    return MAX_ERR_NONE;
}

void orvanmax_preset(t_object* x) {
    t_atom head[3];
    atom_setobj(&head[0], x);
    atom_setsym(&head[1], object_classname(x));
    atom_setsym(&head[2], orvanmax_common_symbols.s_recallpreset);
    long count = 0;
    t_atom* state = nullptr;
    orvanmax_getvalueof(x, &count, &state);
    if (count == 0 || state == nullptr) object_error(x, "error in orvanmax_preset");
    if (void* const buffer = gensym("_preset")->s_thing) {
        binbuf_insert(buffer, nullptr, 3, head);
        binbuf_append(buffer, nullptr, static_cast<short>(count), state);
    }
    sysmem_freeptr(state);
}

t_max_err orvanmax_recallpreset(t_object* x, t_symbol*, short count, t_atom* atoms) {
    return orvanmax_setvalueof(x, count, atoms);
}

t_max_err object_attr_setvalueof_deferred(t_object* x, t_symbol* name, short count, t_atom* atoms) {
    return object_attr_setvalueof(x, name, count, atoms);
}

}  // namespace orvanmax
