#include <benchmark/benchmark.h>

#include <vector>

#include "filters/delay.h"

namespace {

constexpr double sampleRate = 48000.0;

/// One line in a mode (first argument), standing or, with a second argument of 1, gliding all the time.
void DelayLine(benchmark::State& state) {
    constexpr int blockSize = 64;
    const auto mode = static_cast<Lume::Delay::InterpolationMode>(state.range(0));
    Lume::Delay delay(300.0f, mode);
    delay.Configure(static_cast<float>(sampleRate), blockSize, true);
    delay.SetDelay(100.3f, true);
    float next = 50.0f;
    std::vector<float> signal(blockSize, 0.5f), out(blockSize);
    for (auto _ : state) {
        if (state.range(1) != 0) {
            delay.SetDelay(next, false);
            next = 150.0f - next;
        }
        delay.Process(out.data(), signal.data(), blockSize);
        benchmark::ClobberMemory();
    }
    state.SetLabel(Lume::Delay::GetInterpolationModeName(mode));
    state.counters["xRealTime"] = benchmark::Counter(static_cast<double>(state.iterations()) * blockSize / sampleRate,
                                                     benchmark::Counter::kIsRate);
}
BENCHMARK(DelayLine)->ArgsProduct({{0, 1, 2, 3, 6, 9}, {0, 1}});

}  // namespace
