#pragma once

#include "dsp/filter.h"
#include "filters/partitioned_convolution.h"

namespace Lume {

/// Finite impulse response filter of one channel, in direct form ("timedomain") or by fast convolution
/// ("fftconvolution").
///
/// For the same taps the two differ by one sample in all taps from the second on: an impulse gives taps[0] + taps[1],
/// taps[2], ... in direct form (see ConvolveDirectly) and taps[0], taps[1], taps[2], ... by FFT. Neither has latency.
///
/// By FFT the blocks must be a power of two long. Another length of block restarts the filter, and allocates. A block
/// of any other length takes no input: it outputs what earlier blocks still owe, then zeros.
///
/// Taps that change while sound runs click: FadedFIRFilter crossfades. Copies are deep.
class FIRFilter : public orvandsp::Filter {
public:
    /// All taps are 0.
    /// @param order  the number of taps less one
    explicit FIRFilter(unsigned int order = 0, FIRImplementation implementation = timedomain);

    using Filter::Process;

    /// Choose the implementation; make room and clear.
    void SetImplementationMethod(FIRImplementation newImplementation);
    void SetImplementationMethod(char const* name) { SetImplementationMethod(GetFIRImplementation(name)); }
    FIRImplementation GetImplementationMethod() const noexcept { return implementation; }

    void SetSamplerate(float newSamplerate) override { samplerate = newSamplerate; }
    /// By FFT, another size than before restarts the filter; in direct form the size is of no account and kept at 0.
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;
    /// Filters one block; output may be input. Real-time safe while the block length is steady.
    void Process(float* output, float* input, unsigned long numSamples) override;
    /// @param taps  GetNumCoefficients() values; by FFT they act from the next block on
    void SetCoefficients(float* taps) override;
    /// In direct form takes over the memory of another FIRFilter; by FFT starts from silence.
    void SetState(Filter const& other) override;
    /// Makes room for order + 1 taps; those that there were stay.
    void SetOrder(unsigned int newOrder) override;
    void ClearTaps() override;
    bool IsStable() const override { return true; }
    bool IsMinimumPhase() const override { return DurbinStepDownRecursion(coefficients); }
    /// @param result  at least GetNumCoefficients() long
    void GetCoefficients(std::vector<float>& result) const override;
    unsigned int GetNumCoefficients() const override { return static_cast<unsigned int>(coefficients.size()); }

    /// Whether the filter can't be run on parts of a block.
    bool NeedsWholeBlocks() const noexcept { return implementation == fftconvolution; }

private:
    void resize();
    void initializeFFT();
    void computeFFTTaps();

    FIRImplementation implementation;
    bool tapsChanged = false;  // the transformed taps are out of date
    PartitionedConvolution convolution;
};

}  // namespace Lume
