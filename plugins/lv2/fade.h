#pragma once

#include <algorithm>
#include <cstddef>

namespace lv2 {

/// A gain that goes to 0 or 1 in 20 ms.
class Fade {
public:
    explicit Fade(bool on) : gain(on ? 1.0f : 0.0f), target(gain) {}

    void SetSampleRate(double sampleRate) { step = static_cast<float>(1.0 / (0.02 * sampleRate)); }
    void Aim(bool on) { target = on ? 1.0f : 0.0f; }
    /// Arrives at once.
    void Jump() { gain = target; }
    bool IsSilent() const { return gain == 0.0f && target == 0.0f; }

    /// Multiplies samples by the gain as it moves.
    void Apply(float* samples, std::size_t count) {
        if (gain == target && gain == 1.0f) return;
        for (std::size_t i = 0; i < count; ++i) {
            gain = gain < target ? std::min(gain + step, target) : std::max(gain - step, target);
            samples[i] *= gain;
        }
    }

private:
    float gain;
    float target;
    float step = 1.0f;  // per sample
};

}  // namespace lv2
