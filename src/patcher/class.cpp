#include "patcher/class.h"

#include <algorithm>
#include <cstdarg>
#include <string>

#include "patcher/atom.h"
#include "patcher/host.h"
#include "patcher/symbol.h"

namespace max {

t_class* class_new(char const* name, method mnew, method mfree, long size, method, short, ...) {
    t_class* const c = Host::Get().NewClass();
    c->c_sym = gensym(name);
    c->c_new = mnew;
    c->c_free = mfree;
    c->c_size = size;
    return c;
}

t_max_err class_addmethod(t_class* c, method function, char const* name, ...) {
    t_messlist message{gensym(name), function, {}};
    std::va_list types;
    va_start(types, name);
    for (int type = va_arg(types, int); type != 0; type = va_arg(types, int))
        message.m_type.push_back(static_cast<short>(type));
    va_end(types);
    c->c_messages.push_back(std::move(message));
    return MAX_ERR_NONE;
}

t_max_err class_addattr(t_class* c, t_object* attribute) {
    if (c == nullptr || attribute == nullptr) return MAX_ERR_INVALID_PTR;
    c->c_attributes.emplace_back(AttributeOf(attribute));
    return MAX_ERR_NONE;
}

t_max_err class_attr_addattr_parse(t_class* c, char const* attribute, char const* name, t_symbol* type, long,
                                   char const* text) {
    auto* const found = static_cast<t_attr*>(class_attr_get(c, gensym(attribute)));
    if (found == nullptr) return MAX_ERR_GENERIC;
    std::vector<t_atom> value(1);
    if (type == common_symbols_init()->s_symbol) {
        atom_setsym(value.data(), gensym(text));
    } else {
        value = ParseAtoms(text);
    }
    found->attributes.emplace_back(gensym(name), std::move(value));
    return MAX_ERR_NONE;
}

void* class_attr_get(t_class* c, t_symbol* name) {
    const auto found = std::find_if(c->c_attributes.begin(), c->c_attributes.end(),
                                    [name](auto const& attribute) { return attribute->name == name; });
    return found != c->c_attributes.end() ? found->get() : nullptr;
}

void class_dspinit(t_class* c) {
    c->c_dsp = true;
}

t_max_err class_register(t_symbol* nameSpace, t_class* c) {
    return Host::Get().Register(nameSpace, c);
}

t_class* class_findbyname(t_symbol* nameSpace, t_symbol* name) {
    return Host::Get().FindClass(nameSpace, name);
}

}  // namespace max
