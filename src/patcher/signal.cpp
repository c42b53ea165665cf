#include "patcher/signal.h"

#include <cstdarg>

#include "patcher/box.h"
#include "patcher/host.h"
#include "patcher/object.h"

namespace max {

void z_dsp_setup(t_pxobject* x, long numInlets) {
    x->z_ob.o_state->numInlets = numInlets;
}

void z_dsp_free(t_pxobject* x) {
    if (Box* const box = x->z_ob.o_state->box) box->StopAudio();
}

void dsp_add(t_perfroutine function, int numWords, ...) {
    Box* const box = Host::Get().ActiveBox();
    if (box == nullptr) return;
    box->AddToChain(reinterpret_cast<t_int>(function));
    std::va_list words;
    va_start(words, numWords);
    for (int i = 0; i < numWords; ++i) box->AddToChain(va_arg(words, t_int));
    va_end(words);
}

}  // namespace max
