#pragma once

#include <string>

#include "object/orvan_msp_object.h"

/// The messages that show an object's attributes and put them back, for any object of the host. Control thread only.
namespace orvanmax {

/// Message version: posts what the label of the attribute externalversion says.
void postversion(t_object* x);

/// Message postdspstatus: posts whether the object is muted, bypassed or at work, tested in the order of the audio
/// callback.
void postdspstatus(_OrvanMspObject* x);

/// Message postattributes: posts the value of one attribute, or of all of them.
void postattributes(t_object* x, t_symbol* selector, long count, t_atom* atoms);
void PostValueOfAttribute(t_object* x, std::string const& name);
void PostValueOfAllAttributes(t_object* x);

/// Message dump: sends one attribute, or all of them, out of the dump outlet, in one list: the name and the values,
/// with a comma behind each attribute if there are all.
void dump(t_object* x, t_symbol* selector, long count, t_atom* atoms);
void DumpAttribute(t_object* x, std::string const& name, void* outlet);
void DumpAllAttributes(t_object* x, void* outlet);

/// The object's dump outlet, or null.
void* getdumpoutlet(t_object* x);
/// Sends floats out of the dump outlet under a name.
void dump_float_array(t_object* x, t_symbol* name, long count, float const* values);

/// Message reset: puts one attribute, or all of them, back to the default, through filter and setter.
void reset(t_object* x, t_symbol* selector, long count, t_atom* atoms);
/// The message without atoms.
void reset_attributes(t_object* x);
/// @param force  resets also what asks not to be reset
/// @param warn   warns if there is no default
void ResetAttributeToDefault(t_object* x, std::string const& name, bool force, bool warn);
void ResetAllAttributesToDefault(t_object* x);

}  // namespace orvanmax
