#pragma once

#include <span>
#include <vector>

#include "filters/delay.h"
#include "filters/faded_biquad_cascade.h"
#include "filters/faded_fir_filter.h"
#include "hrtf/hrtf_point.h"

namespace Lume {

/// How an ear is filtered. Not to be confused with HrtfFilterType, the format of a data set, whose numbers differ.
enum HRTFFilterType : int {
    firFilter = 0,      ///< one long FIR filter, whose impulse response holds the delay
    biquadFilters = 1,  ///< a delay, and then a cascade of second-order sections
    noFilter = 2,       ///< a copy. Any other number is silence.
};

/// The way of one source to one ear: a delay and a minimum-phase filter, or one long FIR filter, each changed without
/// clicks. One channel.
class HrtfFiltering : public orvandsp::SignalProcessing {
public:
    static constexpr HRTFFilterType DefaultHrtfFilterType = biquadFilters;
    static constexpr Delay::InterpolationMode DefaultInterpolationModeForDelayLines = Delay::allpass;
    static constexpr float DefaultInterpolationTimeForDelayLines = 30.0f;  // [ms]
    static constexpr float DefaultCrossFadeTime = 5.0f;                    // [ms]

    /// @param needToProcessITD  false leaves the delay out
    HrtfFiltering(HRTFFilterType type, bool needToProcessITD);

    /// Goes over to another kind of filter, which is cleared; that can be heard. The present type changes nothing.
    void SetFilterType(HRTFFilterType newType);
    /// Sets how many coefficients a set has: of biquads a gain and four a stage, of an FIR filter its taps. Clears what
    /// changes in size.
    void SetNumCoefficients(unsigned int n);
    /// Of the active filter; 0 without one. An FIR filter has a tap more than SetNumCoefficients was told.
    unsigned int GetNumCoefficients() const;
    /// The set of the filter that runs or is being faded in; empty without one.
    void GetCoefficients(std::vector<float>& result) const;
    /// Hands in a set, to which the filter fades from the next block on. Nothing is read behind it: what the filter has
    /// beyond the set becomes 0.
    /// @param hold  keeps the set waiting until a call without hold
    void SetCoefficients(std::span<float const> coefficients, bool hold);
    /// The same with as many coefficients as SetNumCoefficients was told.
    void SetCoefficients(float const* coefficients, bool hold);

    /// Sets the delay before the biquads [ms], with a glide or at once. Other types have none.
    void SetDelay(float milliseconds, bool immediately);
    void SetNeedToProcessITD(bool needed) { needToProcessITD = needed; }
    void SetFIRFiltersImplementationMethod(orvandsp::Filter::FIRImplementation implementation);
    /// Crossfade time of the active filter [ms].
    virtual void SetCrossFadeTime(float milliseconds);
    /// Glide time of the delay [ms].
    virtual void SetInterpolationTime(float milliseconds);

    /// Filters one block; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples);
    /// A way and its block; output may be input.
    struct Job;
    /// Runs several ways: what Process of each does, delays with biquads many at a time. No output may be the input of
    /// another way. Real-time safe.
    static void ProcessSeveral(std::span<Job const> jobs, unsigned long numSamples);
    /// Process on channel 0. When it isn't active its output is cleared, and delay and filter stand still.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    bool SuitsKernel();
    void PrepareBiquads();
    void PrepareFir() { fir.SetOrder(firOrder); }

    HRTFFilterType filterType;
    unsigned int numStages = 6;
    unsigned int firOrder = 511;
    Delay delay{Delay::DefaultDelayLineLength, Delay::DefaultInterpolationMode};
    FadedBiquadCascade biquads{6};
    FadedFIRFilter fir{511};
    bool needToProcessITD;
    std::vector<float> delayedInput;
    std::vector<float> paddedSet;  // a set, and zeros behind it
};

struct HrtfFiltering::Job {
    HrtfFiltering* way;
    float* output;
    float* input;
};

/// The filter of an ear (0 left, 1 right) in a measured direction; empty if the point has none.
std::span<float const> EarCoefficients(HrtfPoint const& point, unsigned int ear);

}  // namespace Lume
