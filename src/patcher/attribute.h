#pragma once

#include <utility>
#include <vector>

#include "patcher/types.h"

namespace max {

/// An attribute of a class: a field of its objects' records with a name, a type and checks.
///
/// It is an object itself, whose attributes ("label", "default", "minvalue", ...) tell more about it.
struct t_attr {
    t_object ob;
    t_symbol* name;
    t_symbol* type;       ///< long (32 bits), float32, symbol or atom
    long flags;           ///< of ATTR_...
    method getter;        ///< t_max_err(object, t_attr*, long*, t_atom**), or null: reads the field
    method setter;        ///< t_max_err(object, t_attr*, long, t_atom*), or null: writes the field
    long offset;          ///< of the field in the record [bytes]
    long offsetCount;     ///< of the 32-bit field that holds the array's current length; 0: its length is its size
    long size;            ///< elements that the field has room for
    bool useMin, useMax;  ///< which bounds the clip filter has
    double minimum, maximum;
    std::vector<std::pair<t_symbol*, std::vector<t_atom>>> attributes;
};

/// The attribute that an object is, or null.
t_attr* AttributeOf(void* x);

/// Makes an attribute of one value at an offset of the record.
t_object* attr_offset_new(char const* name, t_symbol* type, long flags, method getter, method setter, long offset);

/// Makes an attribute of up to size values. offsetCount is the place of a field that holds how many are in use, or 0.
t_object* attr_offset_array_new(char const* name, t_symbol* type, long size, long flags, method getter, method setter,
                                long offsetCount, long offset);

/// Keeps every number of an attribute within bounds, before its setter sees it.
t_max_err attr_addfilter_clip(void* attribute, double minimum, double maximum, long useMin, long useMax);

/// The object's attribute of that name, or null.
void* object_attr_get(void* x, t_symbol* name);

/// The names of all attributes in the order of their registration; the caller frees the array with sysmem_freeptr.
t_max_err object_attr_getnames(void* x, long* count, t_symbol*** names);

/// Reads an attribute of an object. If *count and *atoms are 0, memory is reserved, which the caller frees with
/// sysmem_freeptr. An attribute that tells nothing under a name has no atoms (and null), which is no error; an object
/// without an attribute of that name is one.
t_max_err object_attr_getvalueof(void* x, t_symbol* name, long* count, t_atom** atoms);

/// Sets an attribute of an object, through its filter and its setter. An empty list changes nothing.
///
/// Number attributes refuse symbols with a line that names the attribute. (A fixed array with a setter of its own gets
/// its atoms as they come: its setter may know words.) Where no setter stands, the field is written and the box is
/// told.
t_max_err object_attr_setvalueof(void* x, t_symbol* name, long count, t_atom* atoms);
t_max_err object_attr_setlong(void* x, t_symbol* name, long value);
t_max_err object_attr_setfloat(void* x, t_symbol* name, float value);

}  // namespace max
