#include "dsp/ramp.h"

#include <algorithm>

namespace orvandsp {

namespace {

/// Cuts towards zero; below 0 (and not a number) becomes 0, from 2^32 up all ones.
std::uint32_t CutToCount(float samples) {
    if (!(samples > 0.0f)) return 0;
    if (samples >= 4294967296.0f) return 0xffffffffu;
    return static_cast<std::uint32_t>(samples);
}

}  // namespace

void Ramp::Start(float newTarget, float timeMs) {
    timeConstant = timeMs;
    Begin(newTarget, timeMs);
}

void Ramp::SetValue(float value, bool immediate) {
    Begin(value, immediate ? 0.0f : timeConstant);
}

void Ramp::Begin(float newTarget, float timeMs) {
    target = newTarget;
    // Written as "neither below nor above", so that not a number jumps too.
    if (!(timeMs < 0.0f) && !(timeMs > 0.0f)) {
        start = newTarget;
        current = newTarget;
        increment = 0.0f;
        remaining = 0;
        total = 0;
        return;
    }
    start = current;
    total = CutToCount(samplerate * timeMs * 0.001f);
    // From 2^31 up this is negative: no ramp runs, and the next Process jumps.
    remaining = static_cast<std::int32_t>(total);
    increment = (newTarget - current) / static_cast<float>(total);
}

void Ramp::Process(float* out, int numSamples) noexcept {
    if (numSamples == 0) return;
    while (remaining > 0) {
        const int count = std::min<int>(remaining, numSamples);
        const float base = current;
        const float end = static_cast<float>(count) * increment + base;
        const float step = (end - base) / static_cast<float>(count - 1);
        for (int i = 0; i < count; ++i) out[i] = static_cast<float>(i) * step + base;
        current = end;
        remaining -= count;
        if (count == numSamples) return;
        out += count;
        numSamples -= count;
    }
    if (target != current) current = target;
    std::fill_n(out, numSamples, current);
}

float Ramp::Advance(unsigned long numSamples) noexcept {
    const float value = current;
    if (remaining > 0) {
        const auto count = static_cast<std::int32_t>(std::min(static_cast<unsigned long>(remaining), numSamples));
        current += static_cast<float>(count) * increment;
        remaining -= count;
    }
    return value;
}

void Ramp::SetSamplerate(float newSamplerate) {
    const float old = samplerate;
    samplerate = newSamplerate;
    if (newSamplerate == old) return;
    total = CutToCount(newSamplerate * (static_cast<float>(total) * 1000.0f / old) * 0.001f);
    if (remaining >= 1)
        remaining = static_cast<std::int32_t>(
            CutToCount((0.001f * newSamplerate) * (static_cast<float>(remaining) * 1000.0f / old)));
    else
        remaining = static_cast<std::int32_t>(total);
    if (remaining > 0) increment = (target - current) / static_cast<float>(remaining);
}

}  // namespace orvandsp
