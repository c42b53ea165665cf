#pragma once

#include "patcher/types.h"

namespace max {

/// Gives a signal object its signal inlets.
void z_dsp_setup(t_pxobject* x, long numInlets);

/// Takes a signal object out of the signal chain. Its free function calls it first.
void z_dsp_free(t_pxobject* x);

/// Enters a callback with so many words of argument, each as wide as a t_int, into the signal chain; only from within
/// the message dsp.
void dsp_add(t_perfroutine function, int numWords, ...);

}  // namespace max
