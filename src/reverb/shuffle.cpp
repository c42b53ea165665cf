#include "reverb/shuffle.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

#include "kernels/kernels.h"

namespace Lume {

namespace {

constexpr unsigned int groupSize = 4;  // of the three blocks of twelve channels

}  // namespace

Shuffle::Shuffle(unsigned int n)
    : work(n, 0),
      numChannels(n),
      permutation(GetPermutationForChannels(n)),
      identity(n),
      mixingType(MixingTypeForChannels(n)) {
    numInputs = n;
    numOutputs = n;
    std::iota(identity.begin(), identity.end(), 0u);
    Shuffle::SetMaxBlockSize(buffersize);
}

Shuffle::MixingType Shuffle::MixingTypeForChannels(unsigned int n) {
    if (n == 12) return twelveChannels;
    return std::has_single_bit(n) ? hadamard : general;
}

std::vector<unsigned int> Shuffle::GetPermutationForChannels(unsigned int n) {
    switch (n) {
        case 4:
            return {1, 2, 3, 0};
        case 6:
            return {1, 2, 3, 5, 4, 0};
        case 8:
            return {6, 1, 2, 3, 5, 4, 7, 0};
        case 12:
            return {11, 10, 0, 4, 3, 7, 9, 8, 6, 2, 1, 5};
        case 16:
            return {11, 15, 12, 10, 0, 4, 13, 3, 7, 9, 14, 8, 6, 2, 1, 5};
        default:
            break;
    }
    std::vector<unsigned int> rotation(n);
    for (unsigned int i = 0; i < n; ++i) rotation[i] = (i + 1) % n;
    return rotation;
}

void Shuffle::UsePermutation(bool use) {
    usePermutation = use;
}

void Shuffle::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
}

void Shuffle::SetMaxBlockSize(unsigned int blockSize) {
    buffersize = blockSize;
    sum.resize(blockSize);
    work.Resize(numChannels, blockSize);
}

void Shuffle::Clear() {}

void Shuffle::MixGeneral(unsigned int numSamples) {
    for (unsigned int c = 0; c < numChannels; ++c) {
        float const* const channel = work.GetChannel(c);
        if (c == 0)
            for (unsigned int i = 0; i < numSamples; ++i) sum[i] = channel[i];
        else
            for (unsigned int i = 0; i < numSamples; ++i) sum[i] += channel[i];
    }
    const float scale = -2.0f / static_cast<float>(numChannels);
    for (unsigned int i = 0; i < numSamples; ++i) sum[i] *= scale;
    for (unsigned int c = 0; c < numChannels; ++c) {
        float* const channel = work.GetChannel(c);
        for (unsigned int i = 0; i < numSamples; ++i) channel[i] += sum[i];
    }
}

void Shuffle::Process(float** outputs, float** inputs, unsigned long numSamples, short const*) {
    const auto count = static_cast<unsigned int>(numSamples);
    unsigned int const* const order = usePermutation ? permutation.data() : identity.data();
    if (mixingType != general) {
        const std::size_t numInGroup = mixingType == hadamard ? numChannels : groupSize;
        const float scale = mixingType == hadamard ? 1.0f / std::sqrt(static_cast<float>(numChannels)) : 0.5f;
        orvandsp::kernels::Get().hadamard(outputs, inputs, numInGroup, numChannels / numInGroup, order, scale,
                                          numSamples);
        return;
    }
    if (work.GetNumSamples() != count) SetMaxBlockSize(count);
    for (unsigned int c = 0; c < numChannels; ++c) std::copy_n(inputs[c], count, work.GetChannel(c));
    MixGeneral(count);
    for (unsigned int c = 0; c < numChannels; ++c) std::copy_n(work.GetChannel(order[c]), count, outputs[c]);
}

}  // namespace Lume
