#pragma once

#include <cmath>
#include <numbers>
#include <random>
#include <string>
#include <vector>

#include "pan/amplitude_panning.h"
#include "support/channels.h"
#include "support/places.h"

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

/// Every panner that the factory makes, but spherical harmonics: without data they are silent.
struct PannerKind {
    std::string type;
    unsigned int numOutputs;
    char const* role;
    bool isSumOfSources;
};
inline const PannerKind panners[] = {{"xy", 2, "direct", true},         {"ms", 2, "direct", true},
                                     {"ab", 2, "direct", true},         {"surround", 4, "direct", true},
                                     {"panr", 5, "direct", true},       {"angular", 5, "direct", true},
                                     {"vbap2d", 5, "direct", true},     {"vbap", 7, "direct", true},
                                     {"dbap", 5, "direct", true},       {"dbap3d", 5, "direct", true},
                                     {"vdbap", 6, "direct", true},      {"bformat", 4, "direct", true},
                                     {"hoa2d", 5, "direct", true},      {"hoa3d", 9, "direct", true},
                                     {"vbap2d", 5, "diffuse", false},   {"binaural", 2, "diffuse", false},
                                     {"binaural", 2, "direct", true},   {"binaural", 2, "early", true},
                                     {"binaural", 2, "snowman", true},  {"binaural", 2, "sphericalheadmodel", true},
                                     {"binaural", 2, "nearfield", true}};

inline double Power(std::vector<float> const& gains) {
    double power = 0.0;
    for (const float gain : gains) power += static_cast<double>(gain) * static_cast<double>(gain);
    return power;
}

/// The gains of a place, without a source that stands there.
inline std::vector<float> GainsAt(Lume::AmplitudePanning& panner, Lume::CartesianVector const& position) {
    std::vector<float> gains(panner.GetNumOutputs(), 9.0f);
    panner.convert(position, gains.data(), 0);
    return gains;
}

/// Places the only source and waits until all glides and fades are over.
inline void PlaceAndWait(Lume::Pan& panner, Lume::CartesianVector const& position) {
    for (const bool jump : {false, true}) {  // a glide ends beside its target, a jump on it
        panner.SetSourcePosition(0, position, jump);
        Processed(panner, Channels(1, 4096, 0.0f), 2, 512);
    }
}

/// The responses of two outputs to an impulse on the only input.
inline Channels ImpulseResponses(Lume::Pan& panner, std::size_t length = 2048) {
    return Processed(panner, Channels({MakeImpulse(length)}), 2, 512);
}

/// Sums of the responses of two outputs to an impulse, and their centres of gravity [samples]. An allpass that reads
/// between samples shows its gain and its delay at 0 Hz exactly.
struct Arrivals {
    explicit Arrivals(Lume::Pan& panner) {
        const Channels out = ImpulseResponses(panner, 512);
        for (std::size_t c = 0; c < 2; ++c) {
            for (std::size_t n = 0; n < 512; ++n) {
                sum[c] += static_cast<double>(out.data[c][n]);
                delay[c] += static_cast<double>(n) * static_cast<double>(out.data[c][n]);
            }
            delay[c] /= sum[c];
        }
    }
    double sum[2] = {}, delay[2] = {};
};
