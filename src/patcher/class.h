#pragma once

#include <memory>
#include <vector>

#include "patcher/attribute.h"
#include "patcher/types.h"

namespace max {

/// One entry of a class's table of messages.
struct t_messlist {
    t_symbol* m_sym;            ///< the message's name
    method m_fun;               ///< what it calls
    std::vector<short> m_type;  ///< types of its arguments, of e_max_atomtypes
};

/// A class of objects. Messages and attributes stand in tables of their own, in the order of their registration.
struct t_class {
    t_symbol* c_sym = nullptr;  ///< name
    method c_new = nullptr;     ///< void*(t_symbol* name, long count, t_atom* atoms)
    method c_free = nullptr;    ///< void(object)
    long c_size = 0;            ///< of a record [bytes]
    long c_flags = 0;           ///< of CLASS_FLAG_...
    bool c_dsp = false;         ///< a class of signal objects
    std::vector<t_messlist> c_messages;
    std::vector<std::unique_ptr<t_attr>> c_attributes;
};

/// Makes a class. The argument list is that of the constructor and ends with 0; A_GIMME is what this host offers.
t_class* class_new(char const* name, method mnew, method mfree, long size, method menu, short type, ...);

/// Adds a message; its argument types end with 0.
t_max_err class_addmethod(t_class* c, method function, char const* name, ...);

/// Adds an attribute, which the class owns from then on.
t_max_err class_addattr(t_class* c, t_object* attribute);

/// Adds an attribute to an attribute of the class: its value is read from a text, as one symbol if the type is
/// "symbol", otherwise word by word. An error, and no effect, if the class has no such attribute.
t_max_err class_attr_addattr_parse(t_class* c, char const* attribute, char const* name, t_symbol* type, long flags,
                                   char const* text);

/// The class's attribute of that name, or null.
void* class_attr_get(t_class* c, t_symbol* name);

/// Makes the class one of signal objects.
void class_dspinit(t_class* c);

/// Makes the class known by its name. A name that is taken is MAX_ERR_DUPLICATE.
t_max_err class_register(t_symbol* nameSpace, t_class* c);

/// The registered class of that name, or null.
t_class* class_findbyname(t_symbol* nameSpace, t_symbol* name);

}  // namespace max
