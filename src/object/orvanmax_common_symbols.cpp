#include "object/orvanmax_common_symbols.h"

OrvanmaxCommonSymbols orvanmax_common_symbols;

void orvanmax_common_symbols_init() {
    common_symbols_init();  // the host's own come first
#define WORD(slot, text) orvanmax_common_symbols.s_##slot = gensym(text);
#include "object/orvanmax_common_symbols.inc"
#undef WORD
}
