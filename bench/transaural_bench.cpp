#include <benchmark/benchmark.h>

#include "decoders/transaural/transaural_decoder_recursive_symmetric_biquads.h"
#include "decoders/transaural/transaural_decoder_shuffler.h"
#include "dsp/audio_buffer.h"

namespace {

constexpr unsigned int block = 64;

/// The transaural decoders that have a built-in set.
template <typename T>
void Transaural(benchmark::State& state) {
    T decoder(2, 2);
    decoder.Configure(44100.0f, block, true);
    decoder.LoadFromFile("kemar");
    orvandsp::AudioBuffer in(2, block), out(2, block);
    in.FillWithNoise();
    in.ApplyGain(0.1f);
    for (auto _ : state) {
        decoder.Process(out.GetChannels(), in.GetChannels(), block, orvandsp::allActiveInputs);
        benchmark::ClobberMemory();
    }
    state.counters["xRealTime"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * block / 44100.0, benchmark::Counter::kIsRate);
}

BENCHMARK(Transaural<Lume::TransauralDecoderShufflerSymmetric>);
BENCHMARK(Transaural<Lume::TransauralDecoderRecursiveSymmetricBiquads>);

}  // namespace
