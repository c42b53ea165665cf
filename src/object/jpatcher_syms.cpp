#include "object/jpatcher_syms.h"

JpatcherSymbols jpatcher_syms;

void jpatcher_syms_init() {
#define WORD(slot, text) jpatcher_syms.s_##slot = gensym(text);
#include "object/jpatcher_syms.inc"
#undef WORD
}
