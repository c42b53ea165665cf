#pragma once

#include "filters/hl_shelf.h"

namespace Lume {

/// An HLShelf without the overall gain: for loops whose level is set elsewhere.
class UnitaryHLShelf : public HLShelf {
public:
    using HLShelf::Process;

    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) override;

    /// Stores the overall gain [dB], which isn't heard.
    virtual void SetGaindB(float dB);
};

}  // namespace Lume
