#include "orvanverb/common/interrupt.h"

#include <csignal>
#include <initializer_list>

namespace program {

namespace {

volatile std::sig_atomic_t interrupted = 0;

extern "C" void RaiseFlag(int) {
    interrupted = 1;
}

}  // namespace

void CatchInterrupts() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, RaiseFlag);
    std::signal(SIGXFSZ, SIG_IGN);
}

bool Interrupted() noexcept {
    return interrupted != 0;
}

}  // namespace program
