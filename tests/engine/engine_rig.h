#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "engine/orvan_verb.h"
#include "support/places.h"
#include "support/signals.h"

/// An engine whose blocks a test can look at.
class OpenEngine : public Lume::OrvanVerb {
public:
    using OrvanVerb::cluster;
    using OrvanVerb::early;
    using OrvanVerb::earlyGains;
    using OrvanVerb::OrvanVerb;
    using OrvanVerb::reverb;
};

/// A configured engine with its signal vectors: feed it block by block, get one array per loudspeaker.
class EngineRig {
public:
    using Recording = std::vector<std::vector<float>>;

    EngineRig(unsigned int numSources, unsigned int numSpeakers, unsigned int numInternals, float newRate = 48000.0f,
              unsigned int newBlock = 64, char const* format = nullptr)
        : engine(numInternals), rate(newRate), block(newBlock) {
        if (format != nullptr) engine.SetFormat(*Lume::FindRoomFormat(format));
        engine.Configure(rate, block, numSources, numSpeakers);
        in.assign(numSources, std::vector<float>(block));
        out.assign(numSpeakers, std::vector<float>(block));
        for (auto& channel : in) inputs.push_back(channel.data());
        for (auto& channel : out) outputs.push_back(channel.data());
    }

    /// Processes whole blocks, at least numSamples. @param source  (channel, sample since this call) -> float
    template <typename Source>
    Recording Run(std::size_t numSamples, Source source) {
        Recording recording(out.size());
        for (std::size_t t = 0; t < numSamples; t += block) {
            for (unsigned int c = 0; c < in.size(); ++c)
                for (unsigned int i = 0; i < block; ++i) in[c][i] = source(c, t + i);
            engine.Process(outputs.data(), inputs.data(), block, activeInputs);
            for (std::size_t c = 0; c < out.size(); ++c)
                recording[c].insert(recording[c].end(), outputs[c], outputs[c] + block);
        }
        return recording;
    }

    Recording Silence(double seconds) {
        return Run(Samples(seconds), [](unsigned int, std::size_t) { return 0.0f; });
    }

    /// Lets ramps, glides and the panners' cycles come to rest, and the tail die, then empties the engine.
    void Settle() {
        Silence(0.25);
        engine.Clear();
    }

    /// The response of all loudspeakers to an impulse of one source.
    Recording ImpulseResponse(double seconds, unsigned int source = 0) {
        return Run(Samples(seconds),
                   [=](unsigned int c, std::size_t t) { return c == source && t == 0 ? 1.0f : 0.0f; });
    }

    /// The last sample of each loudspeaker after a constant signal on all sources: flat shelves pass it unchanged.
    std::vector<float> ConstantLevels() {
        const Recording recording = Run(Samples(0.25), [](unsigned int, std::size_t) { return 1.0f; });
        std::vector<float> levels;
        for (auto const& channel : recording) levels.push_back(channel.back());
        return levels;
    }

    std::size_t Samples(double seconds) const { return static_cast<std::size_t>(seconds * static_cast<double>(rate)); }

    OpenEngine engine;
    float rate;
    unsigned int block;
    std::vector<std::vector<float>> in, out;
    std::vector<float*> inputs, outputs;
    short const* activeInputs = orvandsp::allActiveInputs;
};

/// Equal steps to the right from an azimuth on [degrees], at a distance [m].
inline std::vector<Lume::CartesianVector> Ring(unsigned int number, double first, double distance = 1.0) {
    std::vector<Lume::CartesianVector> ring(number);
    for (unsigned int i = 0; i < number; ++i) ring[i] = At(first + 360.0 / number * i, 0.0, distance);
    return ring;
}

/// Sum of the squares over all channels.
inline double Energy(EngineRig::Recording const& recording) {
    double energy = 0.0;
    for (auto const& channel : recording) energy += EnergyOf(channel);
    return energy;
}

/// First and last time [ms] at which any channel is above a level.
struct Span {
    double first = -1.0;
    double last = -1.0;
};
inline Span SpanAbove(EngineRig::Recording const& recording, float level, float rate) {
    Span span;
    for (std::size_t t = 0; t < recording[0].size(); ++t)
        for (auto const& channel : recording)
            if (std::fabs(channel[t]) > level) {
                const double ms = static_cast<double>(t) * 1000.0 / static_cast<double>(rate);
                if (span.first < 0.0) span.first = ms;
                span.last = ms;
            }
    return span;
}
