#include "patcher/attribute.h"

#include <algorithm>
#include <cstring>

#include "patcher/atom.h"
#include "patcher/box.h"
#include "patcher/call.h"
#include "patcher/class.h"
#include "patcher/console.h"
#include "patcher/memory.h"
#include "patcher/object.h"
#include "patcher/symbol.h"

namespace max {

namespace {

/// The class of attributes; nothing but its address matters.
t_class attributeClass;

bool IsNumber(t_atom const& atom) {
    return atom.a_type == A_LONG || atom.a_type == A_FLOAT;
}

bool IsNumeric(t_attr const& attribute) {
    return attribute.type == common_symbols_init()->s_long || attribute.type == common_symbols_init()->s_float32;
}

/// Counted arrays and single values declare what they hold, so that the host checks it for them.
bool ChecksTypes(t_attr const& attribute) {
    return attribute.setter == nullptr || attribute.size == 1 || attribute.offsetCount != 0;
}

/// Size of a field's value [bytes]. It may be a symbol, which is a pointer.
template <class Value>
constexpr std::size_t valueBytes = sizeof(Value);  // NOLINT(bugprone-sizeof-expression)

template <class Value>
Value Load(void* x, long offset, long index = 0) {
    Value value;
    std::memcpy(&value, static_cast<char*>(x) + offset + index * long{valueBytes<Value>}, valueBytes<Value>);
    return value;
}

template <class Value>
void Store(void* x, long offset, long index, Value const& value) {
    std::memcpy(static_cast<char*>(x) + offset + index * long{valueBytes<Value>}, &value, valueBytes<Value>);
}

long Length(void* x, t_attr const& attribute) {
    if (attribute.offsetCount == 0) return attribute.size;
    return std::clamp<long>(Load<std::int32_t>(x, attribute.offsetCount), 0, attribute.size);
}

t_atom Read(void* x, t_attr const& attribute, long index) {
    t_atom atom{};
    if (attribute.type == common_symbols_init()->s_long) {
        atom_setlong(&atom, Load<std::int32_t>(x, attribute.offset, index));
    } else if (attribute.type == common_symbols_init()->s_float32) {
        atom.a_type = A_FLOAT;
        atom.a_w.w_float = Load<float>(x, attribute.offset, index);
    } else if (attribute.type == common_symbols_init()->s_symbol) {
        auto* const value = Load<t_symbol*>(x, attribute.offset, index);
        atom_setsym(&atom, value != nullptr ? value : gensym(""));
    } else {
        atom = Load<t_atom>(x, attribute.offset, index);
    }
    return atom;
}

void Write(void* x, t_attr const& attribute, long index, t_atom const& atom) {
    if (attribute.type == common_symbols_init()->s_long) {
        const long value = std::clamp<long>(atom_getlong(&atom), INT32_MIN, INT32_MAX);
        Store(x, attribute.offset, index, static_cast<std::int32_t>(value));
    } else if (attribute.type == common_symbols_init()->s_float32) {
        Store(x, attribute.offset, index, atom_getfloat(&atom));
    } else if (attribute.type == common_symbols_init()->s_symbol) {
        Store(x, attribute.offset, index, atom_getsym(&atom));
    } else {
        Store(x, attribute.offset, index, atom);
    }
}

template <class Value>
Value* NewArray(std::size_t size) {
    return static_cast<Value*>(sysmem_newptr(static_cast<long>(size * valueBytes<Value>)));
}

/// Hands out a copy of the atoms, in the caller's memory if there is some.
t_max_err Return(std::vector<t_atom> const& value, long* count, t_atom** atoms) {
    if (!value.empty()) {
        if (*count == 0 || *atoms == nullptr) *atoms = NewArray<t_atom>(value.size());
        if (*atoms == nullptr) return MAX_ERR_OUT_OF_MEM;
        std::copy(value.begin(), value.end(), *atoms);
    }
    *count = static_cast<long>(value.size());
    return MAX_ERR_NONE;
}

void Clip(t_attr const& attribute, t_atom& atom) {
    if (!IsNumber(atom)) return;
    const double value =
        atom.a_type == A_LONG ? static_cast<double>(atom.a_w.w_long) : static_cast<double>(atom.a_w.w_float);
    double clipped = value;
    // Written as "not above", so that what isn't a number becomes the lower bound.
    if (attribute.useMin && !(clipped >= attribute.minimum)) clipped = attribute.minimum;
    if (attribute.useMax && !(clipped <= attribute.maximum)) clipped = attribute.maximum;
    if (clipped >= value && clipped <= value) return;
    // Not by the atom's type: a long 0 that is too low for a float attribute may become 0.1.
    if (attribute.type == common_symbols_init()->s_long) {
        atom_setlong(&atom, static_cast<long>(clipped));
    } else {
        atom_setfloat(&atom, clipped);
    }
}

/// The plain setter.
t_max_err WriteField(void* x, t_attr const& attribute, std::vector<t_atom> const& atoms) {
    const long length = std::min<long>(static_cast<long>(atoms.size()), attribute.size);
    for (long i = 0; i < length; ++i) Write(x, attribute, i, atoms[static_cast<std::size_t>(i)]);
    if (attribute.offsetCount != 0) Store(x, attribute.offsetCount, 0, static_cast<std::int32_t>(length));
    Box* const box = static_cast<t_object*>(x)->o_state->box;
    return box != nullptr ? object_notify(box->BoxObject(), common_symbols_init()->s_modified, nullptr) : MAX_ERR_NONE;
}

t_attr* NewAttribute(char const* name, t_symbol* type, long size, long flags, method getter, method setter,
                     long offsetCount, long offset) {
    return new t_attr{{&attributeClass, nullptr},
                      gensym(name),
                      type,
                      flags,
                      getter,
                      setter,
                      offset,
                      offsetCount,
                      size,
                      false,
                      false,
                      0.0,
                      0.0,
                      {}};
}

}  // namespace

t_attr* AttributeOf(void* x) {
    auto* const object = static_cast<t_object*>(x);
    return object != nullptr && object->o_class == &attributeClass ? reinterpret_cast<t_attr*>(object) : nullptr;
}

t_object* attr_offset_new(char const* name, t_symbol* type, long flags, method getter, method setter, long offset) {
    return &NewAttribute(name, type, 1, flags, getter, setter, 0, offset)->ob;
}

t_object* attr_offset_array_new(char const* name, t_symbol* type, long size, long flags, method getter, method setter,
                                long offsetCount, long offset) {
    return &NewAttribute(name, type, size, flags, getter, setter, offsetCount, offset)->ob;
}

t_max_err attr_addfilter_clip(void* attribute, double minimum, double maximum, long useMin, long useMax) {
    t_attr* const a = AttributeOf(attribute);
    if (a == nullptr) return MAX_ERR_INVALID_PTR;
    a->minimum = minimum;
    a->maximum = maximum;
    a->useMin = useMin != 0;
    a->useMax = useMax != 0;
    return MAX_ERR_NONE;
}

void* object_attr_get(void* x, t_symbol* name) {
    t_class* const c = object_class(x);
    return c != nullptr ? class_attr_get(c, name) : nullptr;
}

t_max_err object_attr_getnames(void* x, long* count, t_symbol*** names) {
    t_class* const c = object_class(x);
    if (c == nullptr || count == nullptr || names == nullptr) return MAX_ERR_INVALID_PTR;
    const std::size_t number = c->c_attributes.size();
    *names = NewArray<t_symbol*>(number);
    if (*names == nullptr) return MAX_ERR_OUT_OF_MEM;
    *count = static_cast<long>(number);
    std::transform(c->c_attributes.begin(), c->c_attributes.end(), *names, [](auto const& a) { return a->name; });
    return MAX_ERR_NONE;
}

t_max_err object_attr_getvalueof(void* x, t_symbol* name, long* count, t_atom** atoms) {
    if (x == nullptr || count == nullptr || atoms == nullptr) return MAX_ERR_INVALID_PTR;
    if (t_attr const* const owner = AttributeOf(x)) {
        const auto found = std::find_if(owner->attributes.begin(), owner->attributes.end(),
                                        [name](auto const& own) { return own.first == name; });
        return Return(found != owner->attributes.end() ? found->second : std::vector<t_atom>(), count, atoms);
    }
    auto* const attribute = static_cast<t_attr*>(object_attr_get(x, name));
    if (attribute == nullptr || (attribute->flags & ATTR_GET_OPAQUE) != 0) return MAX_ERR_GENERIC;
    if (attribute->getter != nullptr) return Call<t_max_err>(attribute->getter, x, attribute, count, atoms);
    std::vector<t_atom> value(static_cast<std::size_t>(Length(x, *attribute)));
    for (std::size_t i = 0; i < value.size(); ++i) value[i] = Read(x, *attribute, static_cast<long>(i));
    return Return(value, count, atoms);
}

t_max_err object_attr_setvalueof(void* x, t_symbol* name, long count, t_atom* atoms) {
    if (x == nullptr) return MAX_ERR_INVALID_PTR;
    auto* const attribute = static_cast<t_attr*>(object_attr_get(x, name));
    if (attribute == nullptr || (attribute->flags & ATTR_SET_OPAQUE) != 0) return MAX_ERR_GENERIC;
    if (count <= 0 || atoms == nullptr) return MAX_ERR_NONE;

    std::vector<t_atom> value(atoms, atoms + count);
    if (IsNumeric(*attribute) && ChecksTypes(*attribute)) {
        const auto end = attribute->size == 1 ? value.begin() + 1 : value.end();
        if (const auto odd = std::find_if_not(value.begin(), end, IsNumber); odd != end) {
            object_error(static_cast<t_object*>(x), "%s: a number is expected, not \"%s\"", name->s_name,
                         AtomText(*odd).c_str());
            return MAX_ERR_GENERIC;
        }
    }
    for (t_atom& atom : value) Clip(*attribute, atom);
    if (attribute->setter != nullptr)
        return Call<t_max_err>(attribute->setter, x, attribute, static_cast<long>(value.size()), value.data());
    return WriteField(x, *attribute, value);
}

t_max_err object_attr_setlong(void* x, t_symbol* name, long value) {
    t_atom atom{};
    atom_setlong(&atom, value);
    return object_attr_setvalueof(x, name, 1, &atom);
}

t_max_err object_attr_setfloat(void* x, t_symbol* name, float value) {
    t_atom atom{};
    atom_setfloat(&atom, static_cast<double>(value));
    return object_attr_setvalueof(x, name, 1, &atom);
}

}  // namespace max
