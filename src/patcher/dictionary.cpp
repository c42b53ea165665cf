#include "patcher/dictionary.h"

#include <algorithm>

#include "patcher/atom.h"
#include "patcher/attribute.h"
#include "patcher/class.h"
#include "patcher/console.h"
#include "patcher/object.h"
#include "patcher/symbol.h"

namespace max {

namespace {

bool IsAttributeWord(t_atom const& atom) {
    return atom.a_type == A_SYM && atom.a_w.w_sym->s_name[0] == '@' && atom.a_w.w_sym->s_name[1] != '\0';
}

/// A name without a value says nothing: the default holds.
bool Names(t_dictionary const& dictionary, t_symbol const* name) {
    return std::any_of(dictionary.entries.begin(), dictionary.entries.end(),
                       [name](auto const& entry) { return entry.name == name && !entry.value.empty(); });
}

void ApplyDefault(void* x, t_attr& attribute) {
    const auto found = std::find_if(attribute.attributes.begin(), attribute.attributes.end(),
                                    [](auto const& own) { return own.first == gensym("default"); });
    if (found == attribute.attributes.end()) return;
    object_attr_setvalueof(x, attribute.name, static_cast<long>(found->second.size()), found->second.data());
}

}  // namespace

void MoveAttributes(std::vector<t_atom>& atoms, t_dictionary& dictionary) {
    const auto first = std::find_if(atoms.begin(), atoms.end(), IsAttributeWord);
    for (auto word = first; word != atoms.end();) {
        t_symbol* const name = gensym(word->a_w.w_sym->s_name + 1);
        const auto next = std::find_if(word + 1, atoms.end(), IsAttributeWord);
        std::erase_if(dictionary.entries, [name](auto const& entry) { return entry.name == name; });
        dictionary.entries.push_back({name, {word + 1, next}, false});
        word = next;
    }
    atoms.erase(first, atoms.end());
}

t_dictionary* object_dictionaryarg(long count, t_atom* atoms) {
    if (count <= 0 || atoms == nullptr) return nullptr;
    return static_cast<t_dictionary*>(atom_getobj(&atoms[count - 1]));
}

void attr_dictionary_process(void* x, t_dictionary* dictionary) {
    t_class* const c = object_class(x);
    if (c == nullptr || dictionary == nullptr) return;
    if ((c->c_flags & CLASS_FLAG_NEWDICTIONARY) != 0) {
        for (auto const& attribute : c->c_attributes)
            if (!Names(*dictionary, attribute->name)) ApplyDefault(x, *attribute);
    }
    for (auto& entry : dictionary->entries) {
        auto const* const attribute = static_cast<t_attr*>(class_attr_get(c, entry.name));
        if (attribute != nullptr && (attribute->flags & ATTR_SET_OPAQUE_USER) == 0) {
            object_attr_setvalueof(x, entry.name, static_cast<long>(entry.value.size()), entry.value.data());
        } else if (!entry.reported) {
            object_warn(static_cast<t_object*>(x), "%s: \"%s\" is not an attribute that can be set", c->c_sym->s_name,
                        entry.name->s_name);
            entry.reported = true;
        }
    }
}

}  // namespace max
