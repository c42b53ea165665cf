#include "decoders/transaural/filtered_transaural_decoder.h"

#include <algorithm>
#include <functional>
#include <span>
#include <utility>

#include "filters/biquad_cascade.h"
#include "filters/fir_filter.h"

namespace Lume {

namespace {

constexpr unsigned int numNetworkBlocks = 4;

}  // namespace

FilteredTransauralDecoder::FilteredTransauralDecoder(unsigned int numberOfInputs, unsigned int numberOfOutputs,
                                                     HrtfType type, unsigned int numFilters, SpeakerPair pair)
    : TransauralDecoder(numberOfInputs, numberOfOutputs),
      expectedType(type),
      speakerPair(pair),
      filters(numFilters),
      blocks(numNetworkBlocks + 1, buffersize) {
    changeFiltersType(hrtfBiquadCells);
}

bool FilteredTransauralDecoder::LoadFromFile(char const* path) {
    TransauralSet loaded(speakerPair, path);
    HrtfHeaderInfos const& infos = loaded.GetHrtfHeaderInfos();
    if (!canUse(infos)) return false;
    changeFiltersType(infos.filterType);
    for (auto const& filter : filters) {
        // Of a cascade the gain and four coefficients a stage, of an impulse response its length: room for the zero
        // that goes with it (see tapsFor).
        const unsigned int n = infos.numCoefficients;
        filter->SetOrder(infos.filterType == hrtfFIR ? n : (std::max(n, 1u) - 1) / 4 * 2);
        filter->Clear();
    }
    set = std::move(loaded);
    updateFiltersCoefficients();
    return true;
}

void FilteredTransauralDecoder::updateFiltersCoefficients() {
    if (!set) return;
    for (unsigned int number = 1; number <= filters.size(); ++number) {
        orvandsp::Filter& filter = *filters[number - 1];
        std::vector<float> taps = tapsFor(filter, number);
        filter.SetCoefficients(taps.data());
    }
}

void FilteredTransauralDecoder::changeFiltersType(HrtfFilterType type) {
    for (auto& filter : filters) {
        if (type == hrtfFIR && dynamic_cast<FIRFilter*>(filter.get()) == nullptr)
            filter = std::make_unique<FIRFilter>(1, firImplementation);
        else if (type != hrtfFIR && dynamic_cast<BiquadCascade*>(filter.get()) == nullptr)
            filter = std::make_unique<BiquadCascade>();
        else
            continue;
        filter->Configure(samplerate, buffersize, true);
    }
}

void FilteredTransauralDecoder::SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation) {
    firImplementation = implementation;
    for (auto const& filter : filters)
        if (auto* const fir = dynamic_cast<FIRFilter*>(filter.get())) {
            fir->SetImplementationMethod(implementation);
            // The direct form forgets the block size; without it the first block would have to make room.
            fir->SetMaxBlockSize(buffersize);
        }
    updateFiltersCoefficients();
}

void FilteredTransauralDecoder::SetFIRFiltersImplementationMethod(char const* name) {
    SetFIRFiltersImplementationMethod(orvandsp::Filter::GetFIRImplementation(name));
}

void FilteredTransauralDecoder::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    for (auto const& filter : filters) filter->SetSamplerate(newSamplerate);
}

void FilteredTransauralDecoder::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    blocks.Resize(numNetworkBlocks + 1, blockSize);
    for (auto const& filter : filters) filter->SetMaxBlockSize(blockSize);
}

void FilteredTransauralDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                                        short const* activeInputs) {
    if (set && activeInputs[0] != 0 && activeInputs[1] != 0)
        runNetwork(outputs, inputs, numSamples);
    else
        Mute(outputs, numSamples);
}

void FilteredTransauralDecoder::runFilter(unsigned int number, float* output, float* input, unsigned long numSamples) {
    filters[number - 1]->Process(output, input, numSamples);
}

float** FilteredTransauralDecoder::scratch(unsigned long numSamples) {
    blocks.Resize(numNetworkBlocks + 1, static_cast<unsigned int>(numSamples));
    return blocks.GetChannels();
}

void FilteredTransauralDecoder::runSum(float* output, unsigned int first, float* x, unsigned int second, float* y,
                                       unsigned long numSamples) {
    float* const term = scratch(numSamples)[numNetworkBlocks];
    runFilter(first, output, x, numSamples);
    runFilter(second, term, y, numSamples);
    std::transform(output, output + numSamples, term, output, std::plus<>());
}

void FilteredTransauralDecoder::runDifference(float* output, unsigned int first, float* x, unsigned int second,
                                              float* y, unsigned long numSamples) {
    float* const term = scratch(numSamples)[numNetworkBlocks];
    runFilter(first, output, x, numSamples);
    runFilter(second, term, y, numSamples);
    std::transform(output, output + numSamples, term, output, std::minus<>());
}

std::vector<float> FilteredTransauralDecoder::coefficientsOf(unsigned int number) const {
    if (!set) return {};
    const std::span<float const> all = set->GetNearestCoefficients(leftSpeaker, rightSpeaker);
    const std::size_t length = set->GetHrtfHeaderInfos().numCoefficients;
    const std::size_t begin = std::min((number - 1) * length, all.size());
    const std::span<float const> block = all.subspan(begin, std::min(length, all.size() - begin));
    return {block.begin(), block.end()};
}

/// The coefficients of a filter in the form that it takes: zeros make up for what the set doesn't have.
std::vector<float> FilteredTransauralDecoder::tapsFor(orvandsp::Filter const& filter, unsigned int number) const {
    std::vector<float> taps = coefficientsOf(number);
    // In direct form the first two taps both act on the newest sample. With a zero ahead of it an impulse response
    // comes out as the set has it: networks that subtract one way from another can't do with less.
    auto const* const fir = dynamic_cast<FIRFilter const*>(&filter);
    if (fir != nullptr && fir->GetImplementationMethod() != orvandsp::Filter::fftconvolution)
        taps.insert(taps.begin(), 0.0f);
    taps.resize(filter.GetNumCoefficients());
    return taps;
}

}  // namespace Lume
