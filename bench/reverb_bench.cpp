#include <benchmark/benchmark.h>

#include <memory>

#include "reverb/reverb.h"

namespace {

/// Blocks of noise, or of a tail that has long fallen into the denormal range: both must take the same time.
enum Signal : int { noise = 0, tail = 1 };

/// @param state  channels, block size, signal
void LateField(benchmark::State& state) {
    constexpr float rate = 48000.0f;
    const auto numChannels = static_cast<unsigned int>(state.range(0));
    const auto block = static_cast<unsigned int>(state.range(1));
    const std::unique_ptr<Lume::Reverb> reverb(Lume::Reverb::Create(numChannels, rate));
    reverb->Configure(rate, block, true);
    reverb->SetDelaysMinSum(52.9f, 860.0f, numChannels < 9 ? 0.5f : 0.3f);
    reverb->SetDecayTime(state.range(2) == noise ? 2.0f : 0.5f);

    orvandsp::AudioBuffer in(numChannels, block);
    orvandsp::AudioBuffer out(numChannels, block);
    in.FillWithNoise();
    const auto run = [&] {
        reverb->Process(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    };
    for (unsigned int done = 0; done < 48000; done += block) run();
    if (state.range(2) == tail) {
        in.Clear();
        for (unsigned int done = 0; done < 8 * 48000; done += block) run();
    }
    for (auto _ : state) run();
    state.counters["xRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * static_cast<double>(block) / static_cast<double>(rate),
        benchmark::Counter::kIsRate);
}

BENCHMARK(LateField)
    ->ArgNames({"channels", "block", "tail"})
    ->ArgsProduct({{8, 16}, {64}, {noise, tail}})
    ->ArgsProduct({{8}, {16, 512}, {noise}})
    ->ArgsProduct({{12, 64}, {64}, {noise}});

}  // namespace
