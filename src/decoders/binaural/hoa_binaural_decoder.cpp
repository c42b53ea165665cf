#include "decoders/binaural/hoa_binaural_decoder.h"

#include <algorithm>

namespace Lume {

HOABinauralDecoder::HOABinauralDecoder(unsigned int numChannels)
    : filters(2 * static_cast<std::size_t>(numChannels), FIRFilter(0, orvandsp::Filter::fftconvolution)), work(3, 0) {
    initDecoder(numChannels, 2);
    HOABinauralDecoder::SetMaxBlockSize(buffersize);
}

void HOABinauralDecoder::SetEars(AmbisonicEars const& ears) {
    latencySamples = ears.latencySamples;
    for (std::size_t i = 0; i < filters.size(); ++i) {
        std::vector<float> const& rows = i < numInputs ? ears.left : ears.right;
        std::vector<float> taps(rows.begin() + static_cast<std::ptrdiff_t>(i % numInputs * ears.length),
                                rows.begin() + static_cast<std::ptrdiff_t>((i % numInputs + 1) * ears.length));
        filters[i].SetOrder(ears.length - 1);
        filters[i].SetMaxBlockSize(buffersize);
        filters[i].SetCoefficients(taps.data());
        filters[i].Clear();
    }
}

void HOABinauralDecoder::Process(float** outputs, float** inputs, unsigned long numSamples,
                                 short const* /*activeInputs*/) {
    // Outputs may be inputs, so that the sums stand aside until all inputs are read.
    for (unsigned int ear = 0; ear < 2; ++ear) {
        float* const sum = work.GetChannel(1 + ear);
        std::fill_n(sum, numSamples, 0.0f);
        for (unsigned int c = 0; c < numInputs; ++c) {
            float* const filtered = work.GetChannel(0);
            filters[ear * numInputs + c].Process(filtered, inputs[c], numSamples);
            for (unsigned long i = 0; i < numSamples; ++i) sum[i] += filtered[i];
        }
    }
    for (unsigned int ear = 0; ear < 2; ++ear) std::copy_n(work.GetChannel(1 + ear), numSamples, outputs[ear]);
}

void HOABinauralDecoder::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    work.Resize(3, blockSize);
    for (FIRFilter& filter : filters) filter.SetMaxBlockSize(blockSize);
}

}  // namespace Lume
