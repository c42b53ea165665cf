#pragma once

#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "geometry/cartesian_vector.h"

/// A position by the listener's azimuth [degrees] (0 ahead, 90 on the right), elevation [degrees] and distance [m].
inline Lume::CartesianVector At(double azimuth, double elevation = 0.0, double distance = 1.0) {
    const double a = azimuth * std::numbers::pi / 180.0;
    const double e = elevation * std::numbers::pi / 180.0;
    return {static_cast<float>(distance * std::sin(a) * std::cos(e)),
            static_cast<float>(distance * std::cos(a) * std::cos(e)), static_cast<float>(distance * std::sin(e))};
}

/// Uniform numbers that are the same with every library.
class Uniform {
public:
    explicit Uniform(unsigned int seed) : random(seed) {}
    double operator()(double low, double high) {
        return low + (high - low) * static_cast<double>(random()) / 4294967296.0;
    }
    std::mt19937& Generator() { return random; }

private:
    std::mt19937 random;
};

/// Channels of samples with the pointers that a panner takes.
struct Channels {
    Channels(std::size_t count, std::size_t samples, float value) : data(count, std::vector<float>(samples, value)) {
        for (auto& channel : data) pointers.push_back(channel.data());
    }
    std::vector<float*> From(std::size_t sample) const {
        std::vector<float*> result = pointers;
        for (float*& pointer : result) pointer += sample;
        return result;
    }
    std::vector<std::vector<float>> data;
    std::vector<float*> pointers;
};

inline double Power(std::vector<float> const& gains) {
    double power = 0.0;
    for (const float gain : gains) power += static_cast<double>(gain) * static_cast<double>(gain);
    return power;
}
