#pragma once

#include "object/host_api.h"

/// Names of attributes of attributes, and general words, as symbols. Comparing a keyword means comparing two addresses.
///
/// A flat array of symbols with a named slot for each word of orvanmax_common_symbols.inc.
struct OrvanmaxCommonSymbols {
#define WORD(slot, text) t_symbol* s_##slot;
#include "object/orvanmax_common_symbols.inc"
#undef WORD
};
static_assert(sizeof(OrvanmaxCommonSymbols) == 142 * sizeof(void*));

/// Filled by orvanmax_common_symbols_init before the first object is made, and left alone from then on.
extern OrvanmaxCommonSymbols orvanmax_common_symbols;

void orvanmax_common_symbols_init();
