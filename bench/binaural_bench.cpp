#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

#include "dsp/audio_buffer.h"
#include "engine/orvan_verb.h"
#include "pan/binaural/binaural_panning_direct.h"

namespace {

constexpr float rate = 48000.0f;
constexpr unsigned int block = 64;

Lume::CartesianVector OnCircle(double turns) {
    const double angle = 2.0 * std::numbers::pi * turns;
    return {static_cast<float>(std::sin(angle)), static_cast<float>(std::cos(angle)), 0.0f};
}

void CountRealTime(benchmark::State& state) {
    state.counters["xRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * block / static_cast<double>(rate), benchmark::Counter::kIsRate);
}

/// The panner of the direct sound with the built-in set. Moving sources take a step every 20 ms: their filters
/// crossfade a quarter of the time, and their delays glide all the time.
/// @param state  sources, whether they move
void BinauralDirect(benchmark::State& state) {
    const auto numSources = static_cast<unsigned int>(state.range(0));
    const bool moving = state.range(1) != 0;
    Lume::BinauralPanningDirect panner(numSources, 2);
    panner.Configure(rate, block, true);
    for (unsigned int i = 0; i < numSources; ++i)
        panner.SetSourcePosition(i, OnCircle(static_cast<double>(i) / numSources), false);
    orvandsp::AudioBuffer in(numSources, block);
    orvandsp::AudioBuffer out(2, block);
    in.FillWithNoise();
    unsigned int blocks = 0;
    double turns = 0.0;
    for (auto _ : state) {
        if (moving && ++blocks % 15 == 0) {
            turns += 1.0 / 360.0;
            for (unsigned int i = 0; i < numSources; ++i)
                panner.SetSourcePosition(i, OnCircle(turns + static_cast<double>(i) / numSources), false);
        }
        panner.Process(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    }
    CountRealTime(state);
}

BENCHMARK(BinauralDirect)->ArgNames({"sources", "moving"})->ArgsProduct({{1, 6, 64}, {0, 1}});

/// The whole engine for headphones.
/// @param state  sources
void BinauralEngine(benchmark::State& state) {
    const auto numSources = static_cast<unsigned int>(state.range(0));
    Lume::OrvanVerb engine(8);
    engine.Configure(rate, block, numSources, 2);
    orvandsp::AudioBuffer in(numSources, block);
    orvandsp::AudioBuffer out(2, block);
    in.FillWithNoise();
    const auto run = [&] {
        engine.Process(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    };
    for (unsigned int done = 0; done < 48000; done += block) run();
    for (auto _ : state) run();
    CountRealTime(state);
}

BENCHMARK(BinauralEngine)->ArgName("sources")->Arg(1)->Arg(6)->Arg(64);

}  // namespace
