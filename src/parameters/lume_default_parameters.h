#pragma once

#include "geometry/cartesian_vector.h"

namespace Lume {

/// Defaults and limits of all parameters, the one table that the engine and its users read.
///
/// Times in milliseconds (decay times in seconds), gains in decibels, frequencies in hertz, lengths in metres, angles
/// in degrees.
class LumeDefaultParameters {
public:
    // Early reflections
    static constexpr float DefaultEarlyStart = 22.22f;
    static constexpr float MinEarlyStart = 1.0f;
    static constexpr float MaxEarlyStart = 120.0f;
    static constexpr float DefaultEarlyEnd = 39.71f;
    static constexpr float MinEarlyEnd = 1.0f;
    static constexpr float MaxEarlyEnd = 120.0f;
    static constexpr float DefaultEarlyDistr = 0.5f;
    static constexpr float DefaultEarlyWidth = 30.0f;
    static constexpr float MinEarlyWidth = 10.0f;
    static constexpr float MaxEarlyWidth = 180.0f;
    static constexpr float DefaultEarlyShape = 0.5f;
    static constexpr float MinEarlyShape = 0.0f;
    static constexpr float MaxEarlyShape = 1.0f;

    // Distributions of delays within their range
    static constexpr float DefaultDistribution = 0.5f;
    static constexpr float MinDistribution = 0.1f;
    static constexpr float MaxDistribution = 0.9f;

    // Cluster
    static constexpr float DefaultClusterStart = 42.47f;
    static constexpr float MinClusterStart = 1.0f;
    static constexpr float MaxClusterStart = 300.0f;
    static constexpr float DefaultClusterEnd = 105.64f;
    static constexpr float MinClusterEnd = 1.0f;
    static constexpr float MaxClusterEnd = 300.0f;
    static constexpr float DefaultClusterDistr = 0.5f;

    // Late field
    static constexpr float DefaultReverbStart = 95.37f;
    static constexpr float MinReverbStart = 1.0f;
    static constexpr float MaxReverbStart = 500.0f;
    static constexpr float DefaultReverbDistr = 0.5f;
    static constexpr float DefaultReverbModalDensity = 0.86f;
    static constexpr float MinReverbModalDensity = 0.2f;
    static constexpr float MaxReverbModalDensity = 4.0f;
    static constexpr float DefaultDecayTime = 1.995f;
    static constexpr float MinDecayTime = 0.1f;
    static constexpr float MaxDecayTime = 10.0f;
    static constexpr float DefaultRelativeDecayLow = 1.0f;
    static constexpr float MinDecayTimeLow = 0.1f;
    static constexpr float MaxDecayTimeLow = 10.0f;
    static constexpr float DefaultRelativeDecayMedium = 1.0f;
    static constexpr float MinDecayTimeMed = 0.1f;
    static constexpr float MaxDecayTimeMed = 10.0f;
    static constexpr float DefaultRelativeDecayHigh = 0.5f;
    static constexpr float MinDecayTimeHigh = 0.1f;
    static constexpr float MaxDecayTimeHigh = 1.0f;
    static constexpr float DefaultReverbCrossoverFrequencyLow = 250.0f;
    static constexpr float DefaultReverbCrossoverFrequencyHigh = 8000.0f;
    static constexpr float DefaultReverbGain = 0.0f;
    static constexpr float DefaultAirRolloffFrequency = 10000.0f;
    static constexpr bool DefaultReverbAirAbsorption = true;
    static constexpr bool DefaultReverbInfinite = false;

    // Shelves
    static constexpr float HLShelfDefaultGain = 0.0f;
    static constexpr float MinHLShelfGlobalGaindB = -60.0f;
    static constexpr float MaxHLShelfGlobalGaindB = 10.0f;
    static constexpr float HLShelfDefaultGainLow = 0.0f;
    static constexpr float HLShelfDefaultGainMed = 0.0f;
    static constexpr float HLShelfDefaultGainHigh = 0.0f;
    static constexpr float MinHLShelfGaindB = -30.0f;
    static constexpr float MaxHLShelfGaindB = 30.0f;
    static constexpr float HLShelfDefaultFreqLow = 250.0f;
    static constexpr float HLShelfDefaultFreqHigh = 4000.0f;
    static constexpr float MinHLShelfFrequency = 20.0f;
    static constexpr float MaxHLShelfFrequency = 20000.0f;

    // Sources
    static constexpr float sourceReferenceDistance = 1.0f;
    static constexpr float minSourceDistance = 0.3f;
    static constexpr float maxSourceDistance = 100.0f;
    static constexpr CartesianVector DefaultSourcePosition{0.0f, 1.0f, 0.0f};

    // The listener, for binaural and transaural panning
    static constexpr float DefaultHeadRadius = 0.0875f;
    static constexpr float DefaultTorsoRadius = 0.169f;
    static constexpr float DefaultNeckHeight = 0.053f;
    static constexpr float DefaultHRTFMeasurementSphereRadius = 2.08f;
    static constexpr float DefaultLoudSpeakersAngleForTransaural = 30.0f;

    // Room estimation
    static constexpr float MinRadius = 0.2f;
    static constexpr float MinRoomVolume = 10.0f;     // [m^3]
    static constexpr float MaxRoomVolume = 15000.0f;  // [m^3]
};

}  // namespace Lume
