// An impulse response of 512 taps for 8 sources in two ears, by FFT and in direct form, at block 64 and 48 kHz.

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include "filters/fir_filter.h"

namespace {

using orvandsp::Filter;

void BM_EightSourcesInTwoEars(benchmark::State& state, Filter::FIRImplementation implementation) {
    constexpr unsigned int numTaps = 512;
    constexpr std::size_t numFilters = 8 * 2;
    constexpr std::size_t blockSize = 64;
    constexpr double sampleRate = 48000.0;

    std::vector<float> taps(numTaps), input(blockSize), output(blockSize);
    for (std::size_t i = 0; i < numTaps; ++i) taps[i] = std::cos(static_cast<float>(i * i)) / static_cast<float>(i + 1);
    for (std::size_t i = 0; i < blockSize; ++i) input[i] = std::sin(static_cast<float>(i));
    std::vector<Lume::FIRFilter> filters(numFilters, Lume::FIRFilter(numTaps - 1, implementation));
    for (auto& filter : filters) {
        filter.Configure(static_cast<float>(sampleRate), blockSize, true);
        filter.SetCoefficients(taps.data());
    }
    for (auto _ : state) {
        for (auto& filter : filters) filter.Process(output.data(), input.data(), blockSize);
        benchmark::ClobberMemory();
    }
    state.counters["xRealTime"] =
        benchmark::Counter(static_cast<double>(state.iterations() * static_cast<long>(blockSize)) / sampleRate,
                           benchmark::Counter::kIsRate);
}
BENCHMARK_CAPTURE(BM_EightSourcesInTwoEars, fftconvolution, Filter::fftconvolution);
BENCHMARK_CAPTURE(BM_EightSourcesInTwoEars, timedomain, Filter::timedomain);

}  // namespace
