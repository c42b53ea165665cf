#include "object/lume_common_symbols.h"

LumeCommonSymbols lume_common_symbols;

void lume_common_symbols_init() {
#define WORD(slot, text) lume_common_symbols.s_##slot = gensym(text);
#include "object/lume_common_symbols.inc"
#undef WORD
}
