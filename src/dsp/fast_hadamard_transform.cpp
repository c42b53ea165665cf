#include "dsp/fast_hadamard_transform.h"

#include <algorithm>
#include <bit>

#include "dsp/vector_operations.h"

namespace orvandsp {

namespace {

/// Visits the pairs (first, second) of each stage's butterflies, in order, with the number of their group.
template <typename Butterfly>
void ForEachButterfly(int size, int halfSize, unsigned int stages, Butterfly butterfly) {
    int block = size;
    int half = halfSize;
    for (unsigned int stage = 0; stage < stages; ++stage) {
        // Whole groups only: a size that is no power of two leaves a remainder.
        int group = 0;
        for (int offset = 0; offset + block <= size; offset += block, ++group)
            for (int j = 0; j < half; ++j) butterfly(offset + j, offset + j + half, group);
        block >>= 1;
        half >>= 1;
    }
}

}  // namespace

FastHadamardTransform::FastHadamardTransform(unsigned int newSize, HadamardOrdering newOrdering,
                                             bool applyNormalizationScaling)
    : ordering(newOrdering), bitReversal(newSize), applyScaling(applyNormalizationScaling) {
    SetSize(newSize);
}

void FastHadamardTransform::SetSize(unsigned int newSize) {
    size = static_cast<int>(newSize);
    stages = newSize == 0 ? 0 : static_cast<unsigned int>(std::bit_width(newSize)) - 1;
    halfSize = size >> 1;
    inverseSize = 1.0f / static_cast<float>(size);
}

void FastHadamardTransform::Process(float* data, [[maybe_unused]] unsigned int count) const noexcept {
    switch (ordering) {
        case sequencyWalsh:
            processSequencyWalshOrdering(data);
            break;
        case dyadicPaley:
            processDyadicPaleyOrdering(data);
            break;
        case naturalHadamard:
            processNaturalOrdering(data);
            break;
    }
    if (applyScaling)
        for (int i = 0; i < size; ++i) data[i] *= inverseSize;
}

void FastHadamardTransform::Process(float* out, float const* in, unsigned int count) const noexcept {
    std::copy_n(in, count, out);
    Process(out, count);
}

void FastHadamardTransform::Process(float** channels, [[maybe_unused]] unsigned int numChannels,
                                    unsigned int count) const noexcept {
    ForEachButterfly(size, halfSize, stages,
                     [&](int first, int second, int) { SumDiff(channels[first], channels[second], count); });
}

void FastHadamardTransform::processNaturalOrdering(float* data) const noexcept {
    ForEachButterfly(size, halfSize, stages, [data](int first, int second, int) {
        const float a = data[first];
        const float b = data[second];
        data[first] = a + b;
        data[second] = a - b;
    });
}

void FastHadamardTransform::processDyadicPaleyOrdering(float* data) const noexcept {
    bitReversal.Reorder(data, static_cast<unsigned int>(size));
    processNaturalOrdering(data);
}

void FastHadamardTransform::processSequencyWalshOrdering(float* data) const noexcept {
    bitReversal.Reorder(data, static_cast<unsigned int>(size));
    ForEachButterfly(size, halfSize, stages, [data](int first, int second, int group) {
        const float a = data[first];
        const float b = data[second];
        const bool odd = (group & 1) != 0;
        data[first] = odd ? a - b : a + b;
        data[second] = odd ? a + b : a - b;
    });
}

}  // namespace orvandsp
