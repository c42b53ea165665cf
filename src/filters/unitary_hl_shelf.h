#pragma once

#include "filters/hl_shelf.h"

namespace Lume {

/// An HLShelf without the overall gain: for loops whose level is set elsewhere.
class UnitaryHLShelf : public HLShelf {
public:
    /// Stores the overall gain [dB], which isn't heard.
    virtual void SetGaindB(float dB);

protected:
    /// The product with 1 is exact and costs nothing: the recursion takes longer.
    float OutputGain() const noexcept override { return 1.0f; }
};

}  // namespace Lume
