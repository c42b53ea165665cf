#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <vector>

#include "dsp/audio_buffer.h"
#include "pan/amplitude/vbap_panning.h"
#include "pan/pan.h"

namespace {

constexpr float rate = 48000.0f;

/// Sources that stand still, or that all move in every block: their gains never rest.
enum Motion : int { still = 0, moving = 1 };

/// @param state  panning method, inputs, outputs, motion
void Panning(benchmark::State& state) {
    constexpr unsigned int block = 64;
    const auto numInputs = static_cast<unsigned int>(state.range(1));
    const auto numOutputs = static_cast<unsigned int>(state.range(2));
    const std::unique_ptr<Lume::Pan> pan(
        Lume::Pan::factory(numInputs, numOutputs, static_cast<Lume::Pan::Type>(state.range(0)), Lume::Pan::direct));
    pan->Configure(rate, block, true);
    orvandsp::AudioBuffer in(numInputs, block);
    orvandsp::AudioBuffer out(numOutputs, block);
    in.FillWithNoise();
    float angle = 0.0f;
    const auto place = [&] {
        angle += 0.01f;
        for (unsigned int i = 0; i < numInputs; ++i) {
            const float a = angle + static_cast<float>(i);
            pan->SetSourcePosition(i, {3.0f * std::cos(a), 3.0f * std::sin(a), 1.0f}, false);
        }
    };
    const auto run = [&] {
        if (state.range(3) == moving) place();
        pan->ProcessAdding(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    };
    place();
    for (int i = 0; i < 100; ++i) run();
    out.Clear();
    for (auto _ : state) run();
    state.counters["xRealTime"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * static_cast<double>(block) / static_cast<double>(rate),
        benchmark::Counter::kIsRate);
}

BENCHMARK(Panning)
    ->ArgNames({"method", "in", "out", "moving"})
    ->ArgsProduct({{Lume::Pan::vbap2d, Lume::Pan::dbap3d}, {8}, {8}, {still, moving}})
    ->ArgsProduct({{Lume::Pan::vbap2d, Lume::Pan::vbap, Lume::Pan::dbap3d}, {64}, {64}, {still, moving}});

/// Choosing the triplets of an even sphere, or of a dome. It happens while a patch is set up and must not be felt.
void TripletChoice(benchmark::State& state) {
    const auto count = static_cast<unsigned int>(state.range(0));
    const float lowest = state.range(1) != 0 ? 0.0f : -1.0f;
    std::vector<Lume::CartesianVector> spiral(count);
    for (unsigned int i = 0; i < count; ++i) {
        const float z = 1.0f - (1.0f - lowest) * (static_cast<float>(i) + 0.5f) / static_cast<float>(count);
        const float a = 2.3999632f * static_cast<float>(i);  // the golden angle
        const float r = std::sqrt(1.0f - z * z);
        spiral[i] = Lume::CartesianVector{r * std::cos(a), r * std::sin(a), z};
    }
    Lume::VbapPanning panner(1, count);
    for (auto _ : state) panner.SetLoudspeakerPositions(spiral.data());
}

BENCHMARK(TripletChoice)
    ->ArgNames({"loudspeakers", "dome"})
    ->ArgsProduct({{8, 24, 64}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

}  // namespace
