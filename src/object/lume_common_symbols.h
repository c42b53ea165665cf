#pragma once

#include "object/host_api.h"

/// The keywords of the spatial library as symbols. Comparing a keyword means comparing two addresses.
///
/// A flat array of symbols with a named slot for each word of lume_common_symbols.inc.
struct LumeCommonSymbols {
#define WORD(slot, text) t_symbol* s_##slot;
#include "object/lume_common_symbols.inc"
#undef WORD
};
static_assert(sizeof(LumeCommonSymbols) == 120 * sizeof(void*));

/// Filled by lume_common_symbols_init before the first object is made, and left alone from then on.
extern LumeCommonSymbols lume_common_symbols;

void lume_common_symbols_init();
