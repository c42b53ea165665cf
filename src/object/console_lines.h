#pragma once

#include <string>

#include "object/host_api.h"

namespace orvanmax {

/// Makes a text of atoms, each followed by a blank: longs, floats and symbols; other atoms are skipped. No atoms, or
/// null, give an empty text.
void atomarray2string(long count, t_atom const* atoms, std::string& text);

/// Console lines "prefix : atoms", tied to an object.
void post_message(t_object* x, long count, t_atom const* atoms, char const* prefix);
void post_warning_message(t_object* x, long count, t_atom const* atoms, char const* prefix);
void post_error_message(t_object* x, long count, t_atom const* atoms, char const* prefix);

/// The same for numbers.
void post_float_array(t_object* x, float const* values, long count, char const* prefix);
void post_double_array(t_object* x, double const* values, long count, char const* prefix);

/// The name of an error code of the host.
char const* HostErrorName(t_max_err error);

}  // namespace orvanmax
