#pragma once

#include "object/host_api.h"

/// Names of the attributes of an object's box as symbols. Comparing a keyword means comparing two addresses.
///
/// A flat array of symbols with a named slot for each word of jpatcher_syms.inc.
struct JpatcherSymbols {
#define WORD(slot, text) t_symbol* s_##slot;
#include "object/jpatcher_syms.inc"
#undef WORD
};
static_assert(sizeof(JpatcherSymbols) == 13 * sizeof(void*));

/// Filled by jpatcher_syms_init before the first object is made, and left alone from then on.
extern JpatcherSymbols jpatcher_syms;

void jpatcher_syms_init();
