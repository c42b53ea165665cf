#pragma once

#if defined(__SSE2__)
#include <immintrin.h>
#endif

namespace orvandsp {

/// Makes the calling thread's floating-point unit flush denormal results to zero and treat denormal operands as zero.
///
/// This is the engine's whole strategy against denormals: no noise is injected and no sample is tested. The mode is
/// never restored here; a front end that shares its thread with others saves and restores it around the calls.
inline void FlushDenormals() noexcept {
#if defined(__SSE2__)
    constexpr unsigned int flushToZeroAndDenormalsAreZero = 0x8040;
    const unsigned int control = _mm_getcsr();
    // Writing the control register stalls the pipeline, reading it doesn't: the loops call this once per block.
    if ((control & flushToZeroAndDenormalsAreZero) != flushToZeroAndDenormalsAreZero)
        _mm_setcsr(control | flushToZeroAndDenormalsAreZero);
#elif defined(__aarch64__)
    constexpr unsigned long flushToZero = 1ul << 24;
    unsigned long control;
    __asm__ volatile("mrs %0, fpcr" : "=r"(control));
    if ((control & flushToZero) == 0) __asm__ volatile("msr fpcr, %0" : : "r"(control | flushToZero));
#endif
}

}  // namespace orvandsp
