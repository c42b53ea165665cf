#pragma once

#include <cstddef>
#include <cstdint>

/// A small in-process stand-in for the patching host: the slice of its API that signal objects of this family call,
/// with the names and shapes that the API has, so that the objects compile against the real kit as they are.
///
/// The API is C at heart. Objects are plain zero-filled records that begin with a t_object, and every function that
/// takes "any object" takes a void*, attributes included: an attribute is an object as well, with attributes of its
/// own. Everything here runs on the control thread but for the signal chain (max::Box::Process).
namespace max {

class Box;
struct ObjectState;
struct t_class;

/// A word of the signal chain; wide enough for a pointer.
using t_int = std::intptr_t;
/// A signal callback: gets the address of its own words, returns the address of the next callback's.
using t_perfroutine = t_int* (*)(t_int*);
/// Any function, to be cast back to what it is by who calls it.
using method = void (*)();
using t_max_err = long;

/// What operations of the host return.
enum e_max_errorcodes : long {
    MAX_ERR_NONE = 0,
    MAX_ERR_GENERIC = -1,
    MAX_ERR_INVALID_PTR = -2,
    MAX_ERR_DUPLICATE = -3,
    MAX_ERR_OUT_OF_MEM = -4
};

/// Types of atoms, and of the arguments of a message.
enum e_max_atomtypes : short {
    A_NOTHING = 0,
    A_LONG = 1,
    A_FLOAT = 2,
    A_SYM = 3,
    A_OBJ = 4,
    A_GIMME = 7,  ///< the message gets its selector and its atoms as they come
    A_CANT = 8    ///< only the host calls it, with arguments of the message's own
};

/// Flags of attributes.
enum e_max_attrflags : long {
    ATTR_FLAGS_NONE = 0,
    ATTR_GET_OPAQUE = 0x001,       ///< can't be read by code
    ATTR_SET_OPAQUE = 0x002,       ///< can't be set by code
    ATTR_GET_OPAQUE_USER = 0x100,  ///< can't be read by the user
    ATTR_SET_OPAQUE_USER = 0x200   ///< can't be set by the user
};

/// Bit of a class's flags word: its constructor gets the attributes of the object box as a dictionary.
constexpr long CLASS_FLAG_NEWDICTIONARY = 4;

/// A text that exists once in the process, so that two are equal if their addresses are.
struct t_symbol {
    char const* s_name;
    void* s_thing;  ///< a place for whatever the symbol stands for at the moment
};

/// One word of a message.
struct t_atom {
    short a_type;  ///< of e_max_atomtypes
    union {
        long w_long;
        float w_float;
        t_symbol* w_sym;
        void* w_obj;
    } a_w;
};

/// Head of every object's record.
struct t_object {
    t_class* o_class;
    ObjectState* o_state;  ///< what the host keeps about the object
};

/// Head of every signal object's record.
struct t_pxobject {
    t_object z_ob;
    long z_disabled;  ///< not 0 while the host has switched the object off
    short z_misc;     ///< 1: inputs and outputs must not share memory
};

/// One signal of the chain.
struct t_signal {
    long s_n;      ///< vector size [samples]
    float* s_vec;  ///< one vector
    float s_sr;    ///< sample rate [Hz]
};

/// Place of a field in a record, as attr_offset_new wants it.
#define calcoffset(record, field) (static_cast<long>(offsetof(record, field)))

}  // namespace max
