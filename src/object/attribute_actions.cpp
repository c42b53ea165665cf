#include "object/attribute_actions.h"

#include <algorithm>
#include <vector>

#include "object/attribute_reflection.h"
#include "object/attribute_value.h"
#include "object/console_lines.h"
#include "object/orvanmax_common_symbols.h"

namespace orvanmax {

namespace {

bool IsOneSymbol(long count, t_atom const* atoms) {
    return count == 1 && atom_gettype(atoms) == A_SYM;
}

t_atom SymbolAtom(t_symbol* symbol) {
    t_atom atom{};
    atom_setsym(&atom, symbol);
    return atom;
}

/// Appends the atoms that a dump can send.
void AppendDumped(t_object* x, AttributeValue const& value, std::vector<t_atom>& list) {
    for (long i = 0; i < value.count; ++i) {
        const long type = atom_gettype(&value.atoms[i]);
        if (type == A_LONG || type == A_FLOAT || type == A_SYM) {
            list.push_back(value.atoms[i]);
        } else {
            object_warn(x, "unknown atom type in orvanmax_dumpattributes");
        }
    }
}

/// Sends a dumped list in one go.
void SendDumped(t_object* x, void* outlet, unsigned long allocated, std::vector<t_atom>& list) {
    if (allocated != list.size())
        object_error(x, "%d atoms allocated but %d atoms dumped", static_cast<int>(allocated),
                     static_cast<int>(list.size()));
    outlet_list(outlet, nullptr, static_cast<short>(list.size()), list.data());
}

/// Whether a reset without force may touch the attribute.
bool AttributeCanBeReset(t_object* x, t_attr* attribute) {
    const AttributeValue dontReset(attribute, orvanmax_common_symbols.s_dontreset);
    if (dontReset.error != MAX_ERR_NONE) {
        object_post(x, "AttributeCanBeReset : %s in object_attr_getvalueof", HostErrorName(dontReset.error));
        return true;
    }
    if (dontReset.HasAtoms() && atom_gettype(dontReset.atoms) != A_LONG) object_post(x, "bug ? AttributeCanBeReset");
    return !dontReset.IsOne();
}

}  // namespace

void postversion(t_object* x) {
    t_attr* const attribute = GetAttributeByName(x, orvanmax_common_symbols.s_externalversion->s_name);
    if (attribute == nullptr) {
        object_error(x, "Couldnt get external version");
        return;
    }
    const AttributeValue label(attribute, orvanmax_common_symbols.s_label);
    if (label.HasAtoms() && atom_gettype(label.atoms) == A_SYM) {
        object_post(x, "Version %s", atom_getsym(label.atoms)->s_name);
    } else {
        object_post(x, "unknown version");
    }
}

void postdspstatus(_OrvanMspObject* x) {
    t_object* const object = &x->ob.z_ob;
    if (x->mute == 1 || x->ob.z_disabled != 0) {
        object_post(object, "dsp processing is muted");
    } else if (x->bypass == 1) {
        object_post(object, "dsp processing is bypassed");
    } else {
        object_post(object, "dsp processing is enabled");
    }
}

void postattributes(t_object* x, t_symbol*, long count, t_atom* atoms) {
    if (count == 0) {
        PostValueOfAllAttributes(x);
    } else if (IsOneSymbol(count, atoms)) {
        PostValueOfAttribute(x, atom_getsym(atoms)->s_name);
    } else {
        post_error_message(x, count, atoms, "invalid postattributes message");
    }
}

void PostValueOfAttribute(t_object* x, std::string const& name) {
    if (GetAttributeByName(x, name) == nullptr) {
        object_error(x, "no attribute %s", name.c_str());
        return;
    }
    const AttributeValue value(x, gensym(name.c_str()));
    if (value.error != MAX_ERR_NONE) {
        object_bug(x, "PostValueOfAttribute : %s in object_attr_getvalueof (%s)", HostErrorName(value.error),
                   name.c_str());
    } else if (value.HasAtoms()) {
        post_message(x, value.count, value.atoms, name.c_str());
    }
}

void PostValueOfAllAttributes(t_object* x) {
    const std::vector<std::string> names = GetListOfUserAttributes(x);
    object_post(x, "found %d attributes", static_cast<int>(names.size()));
    for (std::string const& name : names) PostValueOfAttribute(x, name);
}

void* getdumpoutlet(t_object* x) {
    t_object* outlet = nullptr;
    return object_obex_lookup(x, orvanmax_common_symbols.s_dumpout, &outlet) == MAX_ERR_NONE ? outlet : nullptr;
}

void dump(t_object* x, t_symbol*, long count, t_atom* atoms) {
    void* const outlet = getdumpoutlet(x);
    if (outlet == nullptr) {
        object_error(x, "no dump outlet");
    } else if (count == 0) {
        DumpAllAttributes(x, outlet);
    } else if (IsOneSymbol(count, atoms)) {
        DumpAttribute(x, atom_getsym(atoms)->s_name, outlet);
    } else {
        post_error_message(x, count, atoms, "invalid dump message");
    }
}

void DumpAllAttributes(t_object* x, void* outlet) {
    if (outlet == nullptr) {
        object_error(x, "no dump outlet");
        return;
    }
    const std::vector<std::string> names = GetListOfUserAttributes(x);
    const unsigned long allocated = GetNumberOfAtomsToStoreTheseAttributes(x, names) + 2 * names.size();
    std::vector<t_atom> list;
    list.reserve(allocated);
    for (std::string const& name : names) {
        t_symbol* const symbol = gensym(name.c_str());
        list.push_back(SymbolAtom(symbol));
        const AttributeValue value(x, symbol);
        if (value.error != MAX_ERR_NONE) {
            object_bug(x, "DumpAllAttributes : %s in object_attr_getvalueof (%s)", HostErrorName(value.error),
                       name.c_str());
        } else {
            AppendDumped(x, value, list);
        }
        list.push_back(SymbolAtom(orvanmax_common_symbols.s_comma));
    }
    SendDumped(x, outlet, allocated, list);
}

void DumpAttribute(t_object* x, std::string const& name, void* outlet) {
    if (outlet == nullptr) {
        object_error(x, "no dump outlet");
        return;
    }
    // All attributes, not only those that a user sees: who asks by name may know a hidden one.
    std::vector<std::string> names;
    GetListOfAttributes(x, names, true);
    if (std::find(names.begin(), names.end(), name) == names.end()) {
        object_error(x, "no attribute %s", name.c_str());
        return;
    }
    t_symbol* const symbol = gensym(name.c_str());
    const AttributeValue value(x, symbol);
    if (value.error != MAX_ERR_NONE) {
        object_bug(x, "DumpAttribute : %s in object_attr_getvalueof (%s)", HostErrorName(value.error), name.c_str());
        return;
    }
    std::vector<t_atom> list{SymbolAtom(symbol)};
    AppendDumped(x, value, list);
    SendDumped(x, outlet, static_cast<unsigned long>(value.count) + 1, list);
}

void dump_float_array(t_object* x, t_symbol* name, long count, float const* values) {
    void* const outlet = getdumpoutlet(x);
    if (outlet == nullptr) {
        object_error(x, "no dump outlet");
        return;
    }
    std::vector<t_atom> list(static_cast<std::size_t>(count < 0 ? 0 : count));
    for (std::size_t i = 0; i < list.size(); ++i) atom_setfloat(&list[i], static_cast<double>(values[i]));
    outlet_anything(outlet, name, static_cast<short>(list.size()), list.data());
}

void reset(t_object* x, t_symbol*, long count, t_atom* atoms) {
    if (count == 0) {
        ResetAllAttributesToDefault(x);
    } else if (IsOneSymbol(count, atoms)) {
        ResetAttributeToDefault(x, atom_getsym(atoms)->s_name, false, true);
    } else {
        post_error_message(x, count, atoms, "invalid reset message");
    }
}

void reset_attributes(t_object* x) {
    reset(x, nullptr, 0, nullptr);
}

void ResetAttributeToDefault(t_object* x, std::string const& name, bool force, bool warn) {
    t_attr* const attribute = GetAttributeByName(x, name);
    if (attribute == nullptr) {
        object_error(x, "no attribute %s", name.c_str());
        return;
    }
    if (!AttributeCanBeReset(x, attribute) && !force) return;
    const AttributeValue defaultValue(attribute, orvanmax_common_symbols.s_default_);
    if (defaultValue.error != MAX_ERR_NONE) {
        object_bug(x, "ResetAttributeToDefault : %s in object_attr_getvalueof default %s",
                   HostErrorName(defaultValue.error), name.c_str());
    } else if (defaultValue.HasAtoms()) {
        object_attr_setvalueof(x, gensym(name.c_str()), defaultValue.count, defaultValue.atoms);
    } else if (warn) {
        object_warn(x, "attribute %s doesnt have a default value", name.c_str());
    }
}

void ResetAllAttributesToDefault(t_object* x) {
    for (std::string const& name : GetListOfUserAttributes(x)) ResetAttributeToDefault(x, name, false, false);
}

}  // namespace orvanmax
