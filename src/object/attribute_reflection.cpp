#include "object/attribute_reflection.h"

#include <algorithm>
#include <cstdio>

#include "object/attribute_value.h"
#include "object/console_lines.h"
#include "object/jpatcher_syms.h"
#include "object/orvanmax_common_symbols.h"

namespace orvanmax {

namespace {

/// Opaque to the user for setting and for reading, and to code for setting and for reading.
constexpr long anyOpaque = 0x200 | 0x100 | 2 | 1;

/// What the attribute says about itself under a word.
void GetAttributeValueOf(t_attr* attribute, t_symbol* word, std::string& text, std::string const& defaultText) {
    text = defaultText;
    const AttributeValue value(attribute, word);
    if (value.error != MAX_ERR_NONE) {
        post("GetAttributeValueOf : %s in object_attr_getvalueof (%s %s)", HostErrorName(value.error),
             GetAttributeName(attribute), word->s_name);
        return;
    }
    if (!value.HasAtoms()) return;
    char number[64];
    if (atom_gettype(value.atoms) == A_LONG) {
        std::snprintf(number, sizeof number, "%ld", atom_getlong(value.atoms));
        text = number;
    } else if (atom_gettype(value.atoms) == A_FLOAT) {
        std::snprintf(number, sizeof number, "%.2f", static_cast<double>(atom_getfloat(value.atoms)));
        text = number;
    } else if (atom_gettype(value.atoms) == A_SYM) {
        text = atom_getsym(value.atoms)->s_name;
    } else {
        post("GetAttributeValueOf : %s (%s): unhandled atom type ?", GetAttributeName(attribute), word->s_name);
    }
}

}  // namespace

void GetListOfAttributes(t_object* x, std::vector<std::string>& names, bool sorted) {
    names.clear();
    long count = 0;
    t_symbol** symbols = nullptr;
    if (object_attr_getnames(x, &count, &symbols) != MAX_ERR_NONE || symbols == nullptr) return;
    if (sorted) symbolarray_sort(count, symbols);
    for (long i = 0; i < count; ++i) names.emplace_back(symbols[i]->s_name);
    sysmem_freeptr(symbols);
}

unsigned long GetNumberOfAttributes(t_object* x) {
    std::vector<std::string> names;
    GetListOfAttributes(x, names, false);
    return names.size();
}

unsigned long GetNumberOfVisibleAttributes(t_object* x) {
    std::vector<std::string> names;
    GetListOfAttributes(x, names, false);
    return static_cast<unsigned long>(std::count_if(
        names.begin(), names.end(), [x](std::string const& name) { return !IsAttributeInvisible(x, name); }));
}

t_attr* GetAttributeByName(t_object* x, std::string const& name) {
    return static_cast<t_attr*>(object_attr_get(x, gensym(name.c_str())));
}

char const* GetAttributeName(t_attr* attribute) {
    return attribute->name->s_name;
}

void GetAttributeType(t_attr* attribute, std::string& type) {
    type = attribute->type->s_name;
}

bool IsAttributeInvisible(t_attr* attribute) {
    const AttributeValue value(attribute, orvanmax_common_symbols.s_invisible);
    if (value.error != MAX_ERR_NONE) {
        post("IsAttributeInvisible : %s in object_attr_getvalueof", HostErrorName(value.error));
        return false;
    }
    if (value.HasAtoms() && atom_gettype(value.atoms) != A_LONG) post("error attribute invisible not typed long ??");
    return value.IsOne();
}

bool IsAttributeInvisible(t_object* x, std::string const& name) {
    t_attr* const attribute = GetAttributeByName(x, name);
    return attribute != nullptr && IsAttributeInvisible(attribute);
}

bool IsAppareanceAttribute(t_attr* attribute) {
    JpatcherSymbols const& s = jpatcher_syms;
    t_symbol const* const ofTheBox[] = {
        s.s_annotation,        s.s_hidden,        s.s_hint,         s.s_ignoreclick,           s.s_patching_rect,
        s.s_patching_position, s.s_patching_size, s.s_presentation, s.s_presentation_position, s.s_presentation_rect,
        s.s_presentation_size, s.s_varname,       s.s_background};
    return std::find(std::begin(ofTheBox), std::end(ofTheBox), attribute->name) != std::end(ofTheBox);
}

void RemoveInvisibleAndOpaqueAttributes(t_object* x, std::vector<std::string>& names) {
    std::erase_if(names, [x](std::string const& name) {
        t_attr* const attribute = GetAttributeByName(x, name);
        return attribute == nullptr || IsAttributeInvisible(attribute) || (attribute->flags & anyOpaque) != 0 ||
               IsAppareanceAttribute(attribute) || GetNumberOfAtomsNeededToStoreAttribute(x, name) < 1;
    });
}

std::vector<std::string> GetListOfUserAttributes(t_object* x) {
    std::vector<std::string> names;
    GetListOfAttributes(x, names, true);
    RemoveInvisibleAndOpaqueAttributes(x, names);
    return names;
}

unsigned long GetNumberOfAtomsNeededToStoreAttribute(t_object* x, std::string const& name) {
    const AttributeValue value(x, gensym(name.c_str()));
    if (value.error != MAX_ERR_NONE) {
        object_bug(x, "GetNumberOfAtomsNeededToStoreAttribute : %s in object_attr_getvalueof (%s)",
                   HostErrorName(value.error), name.c_str());
        return 0;
    }
    if (value.count < 0) {
        object_bug(x, "GetNumberOfAtomsNeededToStoreAttribute : error in object_attr_getvalueof %s (ac=%ld)",
                   name.c_str(), value.count);
        return 0;
    }
    return static_cast<unsigned long>(value.count);
}

unsigned long GetNumberOfAtomsToStoreTheseAttributes(t_object* x, std::vector<std::string> const& names) {
    unsigned long sum = 0;
    for (std::string const& name : names) sum += GetNumberOfAtomsNeededToStoreAttribute(x, name);
    return sum;
}

void GetAttributeEnumChoices(t_attr* attribute, std::vector<std::string>& choices, std::string const& defaultText) {
    const AttributeValue value(attribute, orvanmax_common_symbols.s_enumvals);
    if (value.error != MAX_ERR_NONE)
        post("GetAttributeEnumChoices : %s in object_attr_getvalueof", HostErrorName(value.error));
    if (!value.HasAtoms()) {
        choices.assign(1, defaultText);
        return;
    }
    choices.assign(static_cast<std::size_t>(value.count), std::string());
    for (std::size_t i = 0; i < choices.size(); ++i) {
        if (atom_gettype(&value.atoms[i]) == A_SYM) {
            choices[i] = atom_getsym(&value.atoms[i])->s_name;
        } else {
            post("enumvals attribute with an atom that is not a symbol ??");
        }
    }
}

void GetAttributeDescription(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_description, text, defaultText);
}

void GetAttributeCategory(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_category, text, defaultText);
}

void GetAttributeUnits(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_units, text, defaultText);
}

void GetAttributeLabel(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_label, text, defaultText);
}

void GetAttributeMinValue(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_minvalue, text, defaultText);
}

void GetAttributeMaxValue(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_maxvalue, text, defaultText);
}

void GetAttributeDefaultValue(t_attr* attribute, std::string& text, std::string const& defaultText) {
    GetAttributeValueOf(attribute, orvanmax_common_symbols.s_default_, text, defaultText);
}

void GetAttributeDefaultValue(t_object* x, char const* name, std::string& text, std::string const& defaultText) {
    text = defaultText;
    if (t_attr* const attribute = GetAttributeByName(x, name)) GetAttributeDefaultValue(attribute, text, defaultText);
}

}  // namespace orvanmax
