#pragma once

#include <cstddef>
#include <vector>

namespace Lume {

/// Levels of the sources ahead of a room. A gain of 1 passes samples as they are.
class SourceGains {
public:
    /// Makes room. Allocates.
    /// @param samplerate  [Hz]
    void Configure(std::size_t newNumSources, float samplerate, std::size_t newVectorSize);

    /// Takes effect in a ramp of 20 ms for a way of 1. Real-time safe.
    /// @param gain  linear
    void Set(std::size_t source, float gain) noexcept { sources[source].wanted = gain; }
    /// Takes effect at once. Real-time safe.
    void Jump(std::size_t source, float gain) noexcept { sources[source] = {gain, gain}; }

    /// Points each input whose gain isn't 1 to a copy. Real-time safe.
    /// @param inputs  one pointer to a vector per source
    void Apply(float const** inputs) noexcept;

private:
    struct Source {
        float gain = 1.0f, wanted = 1.0f;
    };

    std::vector<Source> sources;
    std::size_t vectorSize = 0;
    float step = 0.0f;  // per sample
    std::vector<float> copies;
};

}  // namespace Lume
