#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace orvandsp {

/// While one stands, the calling thread's floating-point mode may change; then it is again what it was.
///
/// The engine switches denormal numbers off and leaves it at that. A plug-in lives in a process of somebody else, whose
/// other objects may count on them.
class FloatingPointMode {
public:
#if defined(__SSE2__)
    FloatingPointMode() : control(_mm_getcsr()) {}
    ~FloatingPointMode() {
        _mm_setcsr(control);
    }
#elif defined(__aarch64__)
    FloatingPointMode() {
        __asm__ volatile("mrs %0, fpcr" : "=r"(control));
    }
    ~FloatingPointMode() {
        __asm__ volatile("msr fpcr, %0" : : "r"(control));
    }
#else
    FloatingPointMode() {}
    ~FloatingPointMode() {}
#endif
    FloatingPointMode(FloatingPointMode const&) = delete;
    FloatingPointMode& operator=(FloatingPointMode const&) = delete;

private:
#if defined(__SSE2__)
    unsigned int control;
#elif defined(__aarch64__)
    unsigned long control;
#endif
};

}  // namespace orvandsp
