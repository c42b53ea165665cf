#pragma once

/// The slice of the host's API that the object and its services call, under the names that it has there.
///
/// This header alone knows where the API comes from. To build against another kit, include that instead: nothing
/// else changes.

#include "patcher/api.h"

// Types
using max::method;
using max::t_atom;
using max::t_attr;
using max::t_class;
using max::t_dictionary;
using max::t_int;
using max::t_max_err;
using max::t_messlist;
using max::t_object;
using max::t_pxobject;
using max::t_signal;
using max::t_symbol;

// Constants
using max::A_CANT;
using max::A_FLOAT;
using max::A_GIMME;
using max::A_LONG;
using max::A_SYM;
using max::CLASS_FLAG_NEWDICTIONARY;
using max::MAX_ERR_DUPLICATE;
using max::MAX_ERR_GENERIC;
using max::MAX_ERR_INVALID_PTR;
using max::MAX_ERR_NONE;
using max::MAX_ERR_OUT_OF_MEM;

// Symbols, atoms, memory
using max::atom_getfloat;
using max::atom_getlong;
using max::atom_getsym;
using max::atom_gettype;
using max::atom_setfloat;
using max::atom_setlong;
using max::atom_setobj;
using max::atom_setsym;
using max::common_symbols_init;
using max::gensym;
using max::symbolarray_sort;
using max::sysmem_freeptr;
using max::sysmem_newptr;

// Classes and attributes
using max::attr_addfilter_clip;
using max::attr_dictionary_process;
using max::attr_offset_array_new;
using max::attr_offset_new;
using max::class_addattr;
using max::class_addmethod;
using max::class_attr_addattr_parse;
using max::class_dspinit;
using max::class_new;
using max::class_register;
using max::object_attr_get;
using max::object_attr_getnames;
using max::object_attr_getvalueof;
using max::object_attr_setfloat;
using max::object_attr_setlong;
using max::object_attr_setvalueof;

// Objects
using max::object_alloc;
using max::object_class;
using max::object_classname;
using max::object_dictionaryarg;
using max::object_notify;
using max::object_obex_lookup;

// Console
using max::object_bug;
using max::object_error;
using max::object_post;
using max::object_warn;
using max::post;

// Outlets, signals, presets
using max::binbuf_append;
using max::binbuf_insert;
using max::dsp_add;
using max::outlet_anything;
using max::outlet_list;
using max::outlet_new;
using max::z_dsp_free;
using max::z_dsp_setup;
