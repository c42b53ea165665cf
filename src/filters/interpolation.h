#pragma once

#include <algorithm>
#include <cmath>

/// Reading between the samples of a delay line.
///
/// A read position r falls between ring samples y[0] and y[1], of which y[1] is the newer, a fraction x in [0, 1) away
/// from y[0]. Each reader is built for one fraction and called for as many samples as share it:
///
///     const Hermite3 read(x);
///     out[k] = read(y + k, state);
///
/// `state` is the previous output of the read head, which only the allpass uses. numNeighbours says how far a reader
/// looks: 2 is y[0] and y[1], 4 is y[-1] to y[2].
///
/// The order of the operations is part of what a line sounds like in the last bit; keep it. Formulas of the third-order
/// readers after Olli Niemitalo, "Polynomial interpolators for high-quality resampling of oversampled audio", 2001.
namespace Lume::interpolation {

constexpr float oneSixth = 1.0f / 6.0f;
constexpr float twoThirds = 2.0f / 3.0f;

/// A position as whole ring index and fraction.
struct Position {
    int index;
    float fraction;
};

/// Splits a position at the integer not above it.
inline Position Split(float position) noexcept {
    // Far beyond any ring; keeps the conversion defined for every float. Written so that not a number becomes the lower
    // limit.
    constexpr float limit = 1073741824.0f;
    const float bounded = std::max(-limit, std::min(position, limit));
    int index = static_cast<int>(bounded);
    if (static_cast<float>(index) > bounded) --index;
    return {index, bounded - static_cast<float>(index)};
}

/// Nearest integer, ties to even. Positions that aren't finite come out as some integer.
inline int Nearest(float position) noexcept {
    return static_cast<int>(std::lrintf(position));
}

/// A straight line between the two neighbours.
struct Linear {
    static constexpr int numNeighbours = 2;
    explicit Linear(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept { return y[0] + x * (y[1] - y[0]); }
    float x;
};

/// First-order allpass: flat magnitude, and a phase delay that is right at low frequencies. Recursive, therefore one
/// sample after another.
struct Allpass {
    static constexpr int numNeighbours = 2;
    explicit Allpass(float fraction) noexcept {
        const float p = 1.0f - fraction;
        a = (1.0f - p) / (p + 1.0f);
    }
    float operator()(float const* y, float& state) const noexcept {
        state = Next(a, y[0], y[1], state);
        return state;
    }
    /// The recursion, of one line (float) or of several at once.
    template <typename Value>
    static Value Next(Value a, Value y0, Value y1, Value state) noexcept {
        return a * (y1 - state) + y0;
    }
    float a;
};

/// The cubic through four neighbours.
struct Lagrange3 {
    static constexpr int numNeighbours = 4;
    explicit Lagrange3(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept {
        const float c3 = (y[2] - y[-1] + 3.0f * (y[0] - y[1])) * oneSixth;
        const float c2 = (y[1] + y[-1] - 2.0f * y[0]) * 0.5f;
        const float c1 = (6.0f * y[1] - 2.0f * y[-1] - 3.0f * y[0] - y[2]) * oneSixth;
        return ((c3 * x + c2) * x + c1) * x + y[0];
    }
    float x;
};

/// The cubic whose slopes at y[0] and y[1] are those of their neighbours.
struct Hermite3 {
    static constexpr int numNeighbours = 4;
    explicit Hermite3(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept {
        const float c3 = 1.5f * (y[0] - y[1]) + 0.5f * (y[2] - y[-1]);
        const float c2 = -2.5f * y[0] + y[-1] + 2.0f * y[1] - 0.5f * y[2];
        const float c1 = 0.5f * (y[1] - y[-1]);
        return ((c3 * x + c2) * x + c1) * x + y[0];
    }
    float x;
};

/// Watte's parabola over four neighbours.
struct Watte3 {
    static constexpr int numNeighbours = 4;
    explicit Watte3(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept {
        const float s = y[-1] + y[2];
        const float c1 = 1.5f * y[1] - 0.5f * (s + y[0]);
        const float c2 = 0.5f * (s - y[0] - y[1]);
        return (c2 * x + c1) * x + y[0];
    }
    float x;
};

/// The cubic B-spline. It doesn't pass through the samples but smooths them, also at whole positions.
struct BSpline3 {
    static constexpr int numNeighbours = 4;
    explicit BSpline3(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept {
        const float s = y[-1] + y[1];
        const float c0 = s * oneSixth + twoThirds * y[0];
        const float c1 = 0.5f * (y[1] - y[-1]);
        const float c2 = 0.5f * s - y[0];
        const float c3 = 0.5f * (y[0] - y[1]) + (y[2] - y[-1]) * oneSixth;
        return ((c3 * x + c2) * x + c1) * x + c0;
    }
    float x;
};

/// A parabola with continuous slope. It smooths like the B-spline.
struct Parabolic {
    static constexpr int numNeighbours = 4;
    explicit Parabolic(float fraction) noexcept : x(fraction) {}
    float operator()(float const* y, float& /*state*/) const noexcept {
        const float e = y[1] - y[-1];
        const float c0 = 0.25f * (y[-1] + y[1]) + 0.5f * y[0];
        const float c1 = 0.5f * e;
        const float c2 = 0.25f * (y[2] - y[0] - e);
        return (c2 * x + c1) * x + c0;
    }
    float x;
};

}  // namespace Lume::interpolation
