#pragma once

#include "object/orvanverb.h"

/// The messages that place sources and loudspeakers, and the one that reaches the late field by words. What is refused
/// becomes a console line and leaves the record as it was. Control thread only.

/// "source 1 ade 45 2 0": an index from 1, a format, coordinates; relative formats start from where the source is.
void orvanverb_source(orvanverb_t* x, t_symbol* selector, long count, t_atom* atoms);

/// "speaker 1 ade 30 2 0", also "loudspeaker": as above, but relative formats start from the origin.
void orvanverb_loudspeaker(orvanverb_t* x, t_symbol* selector, long count, t_atom* atoms);

/// "speakers az -30 30 110 -110", also "loudspeakers": all of them or none; relative formats start from where each is.
void orvanverb_loudspeakers(orvanverb_t* x, t_symbol* selector, long count, t_atom* atoms);

/// "reverb tr0 3.5": sets an attribute of the late field, through its filter. "start" is reverb_start.
void orvanverb_reverb(orvanverb_t* x, t_symbol* selector, long count, t_atom* atoms);
