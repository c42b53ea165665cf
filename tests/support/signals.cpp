#include "support/signals.h"

#include <cmath>
#include <numbers>
#include <random>

std::vector<float> MakeSine(double frequency, double sampleRate, std::size_t length, double amplitude) {
    std::vector<float> signal(length);
    for (std::size_t n = 0; n < length; ++n) {
        const double phase = 2.0 * std::numbers::pi * frequency * static_cast<double>(n) / sampleRate;
        signal[n] = static_cast<float>(amplitude * std::sin(phase));
    }
    return signal;
}

std::vector<float> MakeImpulse(std::size_t length, std::size_t position) {
    std::vector<float> signal(length, 0.0f);
    signal.at(position) = 1.0f;
    return signal;
}

std::vector<float> MakeNoise(std::uint32_t seed, std::size_t length, float amplitude) {
    std::mt19937 generator(seed);
    std::vector<float> signal(length);
    for (float& sample : signal) {
        const double uniform = static_cast<double>(generator()) / 4294967295.0;  // 0 to 1
        sample = amplitude * static_cast<float>(2.0 * uniform - 1.0);
    }
    return signal;
}

double EnergyOf(std::span<float const> signal) {
    double energy = 0.0;
    for (const float sample : signal) energy += static_cast<double>(sample) * static_cast<double>(sample);
    return energy;
}

double LevelDb(std::span<float const> signal) {
    return 10.0 * std::log10(EnergyOf(signal) / static_cast<double>(signal.size()));
}
