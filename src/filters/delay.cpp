#include "filters/delay.h"

#include <algorithm>
#include <bit>
#include <map>
#include <stdexcept>
#include <string_view>

#include "dsp/denormals.h"
#include "filters/interpolation.h"

namespace Lume {

namespace {

using orvandsp::Ramp;

/// Added to each maximum delay that is asked for [ms].
constexpr float maxDelayMargin = 5.0f;

std::map<std::string_view, Delay::InterpolationMode> initInterpolationMap() {
    return {{"nearest", Delay::nearest},           {"linear", Delay::linear},       {"lagrange3", Delay::lagrange3},
            {"allpass", Delay::allpass},           {"hermite3", Delay::hermite3},   {"watte3", Delay::watte3},
            {"nearestXfade", Delay::nearestXfade}, {"parabolic", Delay::parabolic}, {"bspline3", Delay::bspline3}};
}

/// Filled on first use.
std::map<std::string_view, Delay::InterpolationMode> const& interpolationModeMap() {
    static const auto map = initInterpolationMap();
    return map;
}

/// Calls function.operator()<Reader>() with the reader of a mode. False if the mode reads whole samples.
template <typename Function>
bool WithReader(Delay::InterpolationMode mode, Function&& function) {
    switch (mode) {
        case Delay::linear:
            function.template operator()<interpolation::Linear>();
            return true;
        case Delay::lagrange3:
            function.template operator()<interpolation::Lagrange3>();
            return true;
        case Delay::allpass:
            function.template operator()<interpolation::Allpass>();
            return true;
        case Delay::hermite3:
            function.template operator()<interpolation::Hermite3>();
            return true;
        case Delay::watte3:
            function.template operator()<interpolation::Watte3>();
            return true;
        case Delay::bspline3:
            function.template operator()<interpolation::BSpline3>();
            return true;
        case Delay::parabolic:
            function.template operator()<interpolation::Parabolic>();
            return true;
        case Delay::nearest:
        case Delay::nearestXfade:
            break;
    }
    return false;
}

/// The delay for one sample; the ramp then makes its step.
inline float Step(float& current, int& remaining, float increment) noexcept {
    const float delay = current;
    if (remaining > 0) {
        current += increment;
        --remaining;
    }
    return delay;
}

/// Reads one sample at each position that the ramp runs through.
template <typename ReadAt>
void ReadAlongRamp(float* out, unsigned int count, Ramp& ramp, float base, ReadAt&& readAt) noexcept {
    // Copies, as the compiler can't know that `out` doesn't point at the ramp.
    float current = ramp.current;
    int remaining = ramp.remaining;
    for (unsigned int k = 0; k < count; ++k) {
        const float delay = Step(current, remaining, ramp.increment);
        out[k] = readAt(base - delay + static_cast<float>(k));
    }
    ramp.current = current;
    ramp.remaining = remaining;
}

}  // namespace

Delay::Delay(float maxDelayMs, InterpolationMode mode) : interpolationMode(mode) {
    Delay::SetMaxDelay(maxDelayMs);
    delayRamp.Start(0.0f, 0.0f);
}

void Delay::Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) {
    if (activeInputs[0] != 0) Process(outputs[0], inputs[0], static_cast<int>(numSamples));
}

void Delay::Process(float* out, float* in, int count) noexcept {
    orvandsp::FlushDenormals();
    tapIn(in, count, 0);
    ReadBuiltIn(out, count);
    AdvanceWritePosition(count);
}

void Delay::tapIn(float* src, int count, int offset) noexcept {
    const int begin = (writePosition + offset) & mask;
    if (src != Ring() + begin) {
        const int first = std::min(count, size - begin);
        std::copy_n(src, first, Ring() + begin);
        std::copy_n(src + first, count - first, Ring());
    }
    if (numStale > 0) WriteOverStale(begin, count);
    RefreshGuards(begin, count);
}

void Delay::RefreshGuards() noexcept {
    float* const ring = Ring();
    ring[-1] = ring[size - 1];
    ring[size] = ring[0];
    ring[size + 1] = ring[1];
}

void Delay::FillWithZeros(int begin, int count) noexcept {
    const int first = std::min(count, size - begin);
    std::fill_n(Ring() + begin, first, 0.0f);
    std::fill_n(Ring(), count - first, 0.0f);
    RefreshGuards(begin, count);
}

void Delay::EmptyStale(int begin, int count) noexcept {
    // Both are arcs of the ring: they may overlap at either end of the stale one.
    const int ahead = (begin - firstStale) & mask;
    if (ahead < numStale) FillWithZeros(begin, std::min(count, numStale - ahead));
    const int over = std::min(ahead + count - size, numStale);
    if (over > 0) FillWithZeros(firstStale, over);
}

void Delay::EmptyStaleBetween(float shortest, float longest, int count) noexcept {
    // More than neighbours and the rounding of positions add.
    const int margin = 8 + (size >> 20);
    // Written so that not a number, and what wraps around, empties the whole ring.
    if (!(shortest >= 0.0f && longest < static_cast<float>(size))) return EmptyStale(firstStale, numStale);
    const int oldest = static_cast<int>(longest) + margin;
    const int length = oldest + count + margin - static_cast<int>(shortest);
    if (length >= size) return EmptyStale(firstStale, numStale);
    EmptyStale((writePosition - oldest) & mask, length);
}

void Delay::ExpectRead(Ramp const& ramp, int count) noexcept {
    if (numStale == 0) return;
    const float end = ramp.current + static_cast<float>(std::min(ramp.remaining, count)) * ramp.increment;
    EmptyStaleBetween(std::min(ramp.current, end), std::max(ramp.current, end), count);
}

void Delay::WriteOverStale(int begin, int count) noexcept {
    // Stale cells begin where the writer stood. What it leaves out counts as zero, but for what its end has reached
    // again.
    const int ahead = (begin - firstStale) & mask;
    const int reached = std::max(ahead + count - size, 0);
    const bool leavesOut = ahead < numStale;
    if (leavesOut) FillWithZeros((firstStale + reached) & mask, ahead - reached);
    const int done = std::min(leavesOut ? ahead + count : reached, numStale);
    firstStale = (firstStale + done) & mask;
    numStale -= done;
}

void Delay::tapOut(float* out, int count, float delaySamples, InterpolationMode readMode, float& state) noexcept {
    ExpectRead(delaySamples, delaySamples, count);
    const float position = PositionOf(delaySamples);
    const bool rounds = readMode == nearest || readMode == nearestXfade;
    const interpolation::Position split = interpolation::Split(position);
    int index = (rounds ? interpolation::Nearest(position) : split.index) & mask;

    // The reader stands still within a block: straight runs from one end of the ring to the other.
    const auto forEachRun = [&](auto&& run) {
        for (int done = 0; done < count;) {
            const int length = std::min(size - index, count - done);
            run(out + done, Ring() + index, length);
            done += length;
            index = (index + length) & mask;
        }
    };
    const bool interpolates = WithReader(readMode, [&]<typename Reader>() {
        const Reader read(split.fraction);
        float memory = state;
        forEachRun([&](float* to, float const* from, int length) {
            for (int k = 0; k < length; ++k) to[k] = read(from + k, memory);
        });
        state = memory;
    });
    if (!interpolates) forEachRun([](float* to, float const* from, int length) { std::copy_n(from, length, to); });
}

float* Delay::FindTapped(Ramp const& ramp, int count) noexcept {
    if (ramp.remaining > 0 || interpolationMode != nearest) return nullptr;
    ExpectRead(ramp.current, ramp.current, count);
    const int begin = interpolation::Nearest(PositionOf(ramp.current)) & mask;
    return begin + count <= size ? Ring() + begin : nullptr;
}

void Delay::tapOut(float* out, unsigned int count, Ramp& ramp, InterpolationMode readMode, float& state) noexcept {
    if (ramp.remaining <= 0) {
        tapOut(out, static_cast<int>(count), ramp.current, interpolationMode, allpassState);
        return;
    }
    if (readMode == nearestXfade) {
        CrossfadeRamp(out, count, ramp);
        return;
    }
    ExpectRead(ramp, static_cast<int>(count));
    // Without the ring's length, unlike the fixed read: the mask alone folds a negative index. Near the end of a glide
    // the two forms therefore round the fraction differently.
    const auto base = static_cast<float>(writePosition);
    float* const ring = Ring();
    const int ringMask = mask;
    const bool interpolates = WithReader(readMode, [&]<typename Reader>() {
        float memory = state;
        ReadAlongRamp(out, count, ramp, base, [ring, ringMask, &memory](float position) {
            const interpolation::Position split = interpolation::Split(position);
            return Reader(split.fraction)(ring + (split.index & ringMask), memory);
        });
        state = memory;
    });
    if (!interpolates)
        ReadAlongRamp(out, count, ramp, base,
                      [ring, ringMask](float position) { return ring[interpolation::Nearest(position) & ringMask]; });
}

void Delay::CrossfadeRamp(float* out, unsigned int count, Ramp& ramp) noexcept {
    const float base = static_cast<float>(writePosition) + static_cast<float>(size);
    ExpectRead(ramp.start, ramp.start, 1);
    ExpectRead(ramp.target, ramp.target, 1);
    // Two samples that stand still for the whole block: the glide draws a line between them, and the delayed signal
    // doesn't play meanwhile. This is what the mode is.
    const float oldSample = Ring()[interpolation::Nearest(base - ramp.start) & mask];
    const float newSample = Ring()[interpolation::Nearest(base - ramp.target) & mask];
    float current = ramp.current;
    int remaining = ramp.remaining;
    const auto total = static_cast<float>(ramp.total);
    for (unsigned int k = 0; k < count; ++k) {
        const float gain = 1.0f - static_cast<float>(remaining) / total;
        out[k] = (1.0f - gain) * oldSample + gain * newSample;
        Step(current, remaining, ramp.increment);
    }
    ramp.current = current;
    ramp.remaining = remaining;
}

void Delay::tapOut(float* out, float* delaySamples, int count, InterpolationMode readMode, float& state) noexcept {
    if (numStale > 0) EmptyStale(firstStale, numStale);
    float* const ring = Ring();
    const auto positionOf = [&](int k) {
        return interpolation::Split(static_cast<float>(writePosition + k) - delaySamples[k]);
    };
    const bool interpolates = WithReader(readMode, [&]<typename Reader>() {
        for (int k = 0; k < count; ++k) {
            const interpolation::Position split = positionOf(k);
            out[k] = Reader(split.fraction)(ring + (split.index & mask), state);
        }
    });
    // Cut, not rounded, in this form.
    if (!interpolates)
        for (int k = 0; k < count; ++k) out[k] = ring[positionOf(k).index & mask];
}

void Delay::SetDelay(float ms, bool immediately) {
    if (ms > maxDelay) SetMaxDelay(ms);
    delayRamp.Start(ms * samplerate * 0.001f, immediately ? 0.0f : interpolationTime);
}

void Delay::SetDelayInSamples(float samples, bool immediately) {
    const float ms = samples * 1000.0f / samplerate;
    if (ms > maxDelay) SetMaxDelay(ms);
    delayRamp.Start(samples, immediately ? 0.0f : interpolationTime);
}

int Delay::SizeFor(float newMaxDelay) const {
    const float delaySamples = newMaxDelay * samplerate * 0.001f;
    // A quarter of an hour at 1 MHz: beyond it somebody's arithmetic went wrong. "Not below", so that infinity and not
    // a number are refused too.
    constexpr float maxSamples = 1073741824.0f;
    if (!(delaySamples < maxSamples) || buffersize >= static_cast<unsigned int>(maxSamples))
        throw std::length_error("Delay::SetMaxDelay: the line would exceed 2^30 samples");
    const auto delayCount = static_cast<long long>(std::max(delaySamples, -maxSamples));
    const long long required = static_cast<long long>(buffersize) + 1 + delayCount;
    if (required > static_cast<long long>(maxSamples))
        throw std::length_error("Delay::SetMaxDelay: the line would exceed 2^30 samples");
    return required <= 1 ? 1 : static_cast<int>(std::bit_ceil(static_cast<unsigned int>(required)));
}

void Delay::Allocate(int newSize) {
    if (newSize <= allocatedSize) return;
    buffer.resize(static_cast<std::size_t>(newSize) + 2 * numGuards);
    allocatedSize = newSize;
}

void Delay::Reserve(float ms) {
    Allocate(SizeFor(maxDelayMargin + ms));
}

void Delay::SetMaxDelay(float ms) {
    const float newMaxDelay = maxDelayMargin + ms;
    const int newSize = SizeFor(newMaxDelay);
    // The only step that can fail comes first: a line without memory for its new length stays what it was.
    Allocate(newSize);
    maxDelay = newMaxDelay;
    size = newSize;
    mask = newSize - 1;
    Clear();
}

void Delay::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    SetMaxDelay(maxDelay);
}

void Delay::SetSamplerate(float newSamplerate) {
    const float remembered = std::min(std::max(GetDelay(), 0.0f), maxDelay);
    samplerate = newSamplerate;
    SetMaxDelay(maxDelay);
    delayRamp.SetSamplerate(newSamplerate);
    if (remembered > maxDelay) SetMaxDelay(remembered);
    delayRamp.Start(remembered * newSamplerate * 0.001f, interpolationTime);
}

void Delay::Clear() {
    firstStale = writePosition & mask;
    numStale = size;
    allpassState = 0.0f;
}

Delay::InterpolationMode Delay::GetInterpolationMode(char const* name) {
    const auto found = interpolationModeMap().find(name);
    return found == interpolationModeMap().end() ? allpass : found->second;
}

char const* Delay::GetInterpolationModeName(InterpolationMode mode) {
    for (auto const& [name, named] : interpolationModeMap())
        if (named == mode) return name.data();
    return "allpass";
}

}  // namespace Lume
