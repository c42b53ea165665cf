#include <benchmark/benchmark.h>

#include <vector>

#include "dsp/audio_buffer.h"
#include "engine/orvan_verb.h"

namespace {

constexpr float rate = 48000.0f;

/// Noise on all sources; a tail that has fallen into the denormal range, which must cost the same; noise while all
/// shelves crossfade, the dearest case.
enum Signal : int { noise = 0, tail = 1, fades = 2 };

/// @param state  sources, loudspeakers, internal channels, block size, signal
void Engine(benchmark::State& state) {
    const auto numSources = static_cast<unsigned int>(state.range(0));
    const auto numSpeakers = static_cast<unsigned int>(state.range(1));
    const auto block = static_cast<unsigned int>(state.range(3));
    const auto signal = static_cast<Signal>(state.range(4));
    Lume::OrvanVerb engine(static_cast<unsigned int>(state.range(2)));
    engine.Configure(rate, block, numSources, numSpeakers);
    engine.SetDirectParameters({});
    engine.SetEarlyParameters({});
    engine.SetClusterParameters({});
    Lume::ReverbDspParameters reverb;
    if (signal == tail) reverb.decayTime = 0.5f;
    engine.SetReverbParameters(reverb);

    orvandsp::AudioBuffer in(numSources, block);
    orvandsp::AudioBuffer out(numSpeakers, block);
    in.FillWithNoise();
    float gain = 0.0f;
    const auto run = [&] {
        if (signal == fades) {
            gain = 1.0f - gain;
            engine.SetDirectGainHigh(gain);
            engine.SetRoomGainHigh(gain);
            engine.SetEarlyGainHigh(gain);
            engine.SetClusterGainHigh(gain);
        }
        engine.Process(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    };
    for (unsigned int done = 0; done < 48000; done += block) run();
    if (signal == tail) {
        in.Clear();
        for (unsigned int done = 0; done < 6 * 48000; done += block) run();
    }
    for (auto _ : state) run();
    state.counters["xRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * static_cast<double>(block) / static_cast<double>(rate),
        benchmark::Counter::kIsRate);
}

BENCHMARK(Engine)
    ->ArgNames({"sources", "speakers", "internals", "block", "signal"})
    ->ArgsProduct({{1, 6}, {6}, {8}, {64, 512}, {noise, tail}})
    ->ArgsProduct({{64}, {64}, {16}, {64, 512}, {noise, tail}})
    ->ArgsProduct({{6}, {6}, {8}, {64}, {fades}})
    ->ArgsProduct({{6}, {2}, {8}, {64}, {noise}});

}  // namespace
