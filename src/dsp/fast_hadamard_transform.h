#pragma once

#include "dsp/bit_reversal.h"

namespace orvandsp {

/// Walsh-Hadamard transform by butterflies: N log2(N) additions and no multiplication.
///
/// Every ordering has the same N rows of +1 and -1; they differ in the order of these rows. After B. J. Fino and
/// V. R. Algazi, "Unified matrix treatment of the fast Walsh-Hadamard transform", IEEE Trans. Computers 25(11), 1976.
class FastHadamardTransform {
public:
    enum HadamardOrdering : int {
        sequencyWalsh = 0,    ///< by number of sign changes
        dyadicPaley = 1,      ///< the natural order after a bit reversal
        naturalHadamard = 2,  ///< the recursive one: H(2N) = [H H; H -H]
    };

    /// @param size  the order N, a power of two; for any other one a part of the data stays as it is
    FastHadamardTransform(unsigned int size, HadamardOrdering ordering, bool applyNormalizationScaling);

    /// Sets the order. The bit-reversal table stays that of the constructor's size: after it only the natural ordering
    /// (also that across channels) is the transform of the new size.
    void SetSize(unsigned int newSize);
    void SetOrdering(HadamardOrdering newOrdering) { ordering = newOrdering; }
    /// Whether the single-array forms end with a factor 1/N. Two passes of the natural ordering then give x / N;
    /// without it they give N x.
    void ApplyNormalizationScaling(bool apply) { applyScaling = apply; }

    /// Transforms an array of N values in place. Real-time safe.
    /// @param count  has no effect: the order decides
    void Process(float* data, unsigned int count) const noexcept;

    /// Copies count values from in to out and transforms the first N of them there. Real-time safe.
    void Process(float* out, float const* in, unsigned int count) const noexcept;

    /// Transforms across channels, in place: for each sample k < count, the N values channels[c][k]. Always in natural
    /// order and never scaled. Real-time safe.
    /// @param numChannels  has no effect: the order decides
    void Process(float** channels, unsigned int numChannels, unsigned int count) const noexcept;

private:
    void processNaturalOrdering(float* data) const noexcept;
    void processDyadicPaleyOrdering(float* data) const noexcept;
    void processSequencyWalshOrdering(float* data) const noexcept;

    HadamardOrdering ordering;
    int size = 0;
    unsigned int stages = 0;
    int halfSize = 0;
    float inverseSize = 1.0f;
    BitReversal bitReversal;
    bool applyScaling;
};

}  // namespace orvandsp
