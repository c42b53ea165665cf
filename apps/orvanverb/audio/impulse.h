#pragma once

#include "orvanverb/audio/signal_source.h"

namespace program {

/// One channel, one sample of 1.
class Impulse : public SignalSource {
public:
    unsigned int NumChannels() const override { return 1; }
    std::size_t Read(float* const* channels, std::size_t frames) override;
    double ExpectedFrames() const override { return 1.0; }

private:
    bool given = false;
};

}  // namespace program
