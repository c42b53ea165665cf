#pragma once

#include "object/host_api.h"

/// Saving and restoring the whole state of any object as one flat list of atoms: the values of its visible attributes,
/// sorted by their names, without names, counts or separators. The boundaries are found again from the lengths of the
/// present values, so that a state fits an object of the same shape only.
///
/// A preset is such a list behind three atoms: the object, its class name and the word recallpreset. Control thread
/// only.
namespace orvanmax {

/// Message getvalueof. Allocates the list with sysmem_newptr if *count is below 1 or *atoms null; the host frees it.
/// Otherwise it goes into the caller's memory, which must be large enough.
/// @return 0, always
t_max_err orvanmax_getvalueof(t_object* x, long* count, t_atom** atoms);

/// Message setvalueof: sets one attribute after the other, through filter and setter. A list of the wrong length is
/// refused whole.
/// @return 0, or -1 if the list was refused
t_max_err orvanmax_setvalueof(t_object* x, long count, t_atom* atoms);

/// Message preset: appends a preset of the object to the buffer that the symbol _preset stands for, if it does.
void orvanmax_preset(t_object* x);

/// Message recallpreset: the list behind the head of a preset.
t_max_err orvanmax_recallpreset(t_object* x, t_symbol* selector, short count, t_atom* atoms);

/// object_attr_setvalueof, in the form in which the host defers calls.
t_max_err object_attr_setvalueof_deferred(t_object* x, t_symbol* name, short count, t_atom* atoms);

}  // namespace orvanmax
