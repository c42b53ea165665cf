#pragma once

#include "filters/delay.h"
#include "filters/hl_shelf.h"
#include "filters/low_pass.h"

namespace Lume {

/// What a matrix decoder does to the surround channel, so that leaking front sound isn't drawn to the rear: 15 ms of
/// delay (the ear goes by the first wavefront), less bass and treble, and nothing above 7 kHz.
class SurroundChain {
public:
    SurroundChain();

    /// Filters one channel in place. Real-time safe.
    void Process(float* samples, unsigned long numSamples);

    void SetSamplerate(float samplerate);
    void SetMaxBlockSize(unsigned int blockSize);
    void Clear();

private:
    Delay delay;
    HLShelf shelf;
    LowPass lowPass;
};

}  // namespace Lume
