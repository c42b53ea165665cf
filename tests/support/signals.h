#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// Test signals and level meters. The makers compute in double precision and round once; the meters add up in double
/// precision.

/// amplitude * sin(2 pi f n / fs), n = 0 ... length - 1.
/// @param frequency, sampleRate  [Hz]
std::vector<float> MakeSine(double frequency, double sampleRate, std::size_t length, double amplitude = 1.0);

/// Zeros with a 1 at one sample.
std::vector<float> MakeImpulse(std::size_t length, std::size_t position = 0);

/// White noise, uniform between -amplitude and amplitude: the same on every platform for the same seed.
std::vector<float> MakeNoise(std::uint32_t seed, std::size_t length, float amplitude = 1.0f);

/// The sum of the squares.
double EnergyOf(std::span<float const> signal);

/// Root mean square in decibels of full scale: 0 for a square wave of amplitude 1, minus infinity for silence.
double LevelDb(std::span<float const> signal);
