#pragma once

#include <vector>

#include "dsp/signal_processing.h"

namespace orvandsp {

/// Frame of the single-channel filters.
class Filter : public SignalProcessing {
public:
    /// How a finite impulse response is applied.
    enum FIRImplementation : int { timedomain = 0, fftconvolution = 1 };

    Filter() = default;

    /// Filters channel 0. When the first entry of activeInputs is zero the output stays as it is.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;

    /// Filters one channel; output may be input. Real-time safe.
    virtual void Process(float* output, float* input, unsigned long numSamples) = 0;

    /// Takes over GetNumCoefficients() values.
    virtual void SetCoefficients(float* newCoefficients) = 0;
    /// Readies the audio memory for a fade that starts from another filter of the same kind: takes over what that
    /// holds, or starts from silence where its poles would make that ring.
    virtual void SetState(Filter const& other) = 0;
    virtual void SetOrder(unsigned int newOrder) = 0;
    /// Sets the taps to zero.
    virtual void ClearTaps() = 0;
    virtual bool IsStable() const = 0;
    virtual bool IsMinimumPhase() const = 0;
    virtual void GetCoefficients(std::vector<float>& result) const = 0;
    virtual unsigned int GetNumCoefficients() const = 0;

    unsigned int GetOrder() const noexcept { return order; }

    /// "fftconvolution" or "timedomain"; every value but fftconvolution has the latter name.
    static char const* GetFIRImplementationName(FIRImplementation implementation);
    /// The implementation of that name; timedomain for an unknown name. Control thread only.
    static FIRImplementation GetFIRImplementation(char const* name);
    /// Fills the map of names. GetFIRImplementation calls it.
    static void initFIRImplementationMap();

    /// Whether the zeros of the polynomial c[0] + c[1] z^-1 + ... lie inside the unit circle, by the step-down
    /// recursion (Durbin, "The fitting of time-series models", Rev. Int. Stat. Inst. 28, 1960). c[0] is taken to be 1
    /// and not read as a divisor.
    bool DurbinStepDownRecursion(std::vector<float> const& polynomial) const;

protected:
    unsigned int order = 0;
    std::vector<float> coefficients;
    std::vector<float> state;
};

}  // namespace orvandsp
