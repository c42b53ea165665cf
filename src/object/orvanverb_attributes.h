#pragma once

#include "object/orvanverb.h"

/// The setter of all attributes of orvanverb~ but the switches mute and bypass: stores the value in the record, sends
/// it to the engine if there is one, and tells the box. The host's filters have already clipped what they clip. Control
/// thread.
/// @return 0, or -1 after an error; an empty list is no error and changes nothing
t_max_err orvanverb_set_attr(orvanverb_t* x, t_attr* attribute, long count, t_atom* atoms);
