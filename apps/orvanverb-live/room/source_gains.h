#pragma once

#include <atomic>
#include <cstddef>
#include <memory>
#include <vector>

namespace live {

/// Levels of the sources ahead of the room. A gain of 1 passes samples as they are.
class SourceGains {
public:
    /// @param samplerate  [Hz]
    /// @param maxBlock    samples of one call at most
    SourceGains(std::size_t numSources, float samplerate, std::size_t maxBlock);

    /// Any thread. Takes effect in a ramp of 20 ms for a way of 1.
    /// @param gain  linear
    void Set(std::size_t source, float gain) noexcept { wanted[source].store(gain, std::memory_order_relaxed); }
    /// Without a ramp. Not beside Apply.
    void Begin(std::size_t source, float gain) noexcept;

    /// Points each input whose gain isn't 1 to a copy. Audio thread; real-time safe.
    void Apply(float const** inputs, std::size_t numSamples) noexcept;

private:
    std::size_t numSources, maxBlock;
    float step;  // per sample
    std::unique_ptr<std::atomic<float>[]> wanted;
    std::vector<float> gains, copies;
};

}  // namespace live
