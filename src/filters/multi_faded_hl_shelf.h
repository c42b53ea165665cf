#pragma once

#include <vector>

#include "filters/bank.h"
#include "filters/faded_hl_shelf.h"

namespace Lume {

/// A bank of FadedHLShelf. New channels are flat, know nothing of earlier settings, and fade in 5 ms until
/// SetCrossFadeTime is called.
class MultiFadedHLShelf : public Bank<FadedHLShelf> {
public:
    /// Channels that fade in FadedHLShelf::DefaultHLShelfCrossFadeTime.
    explicit MultiFadedHLShelf(unsigned int numChannels);
    using Bank::SetNumChannels;

    /// [ms], for all channels, from their next fade on.
    void SetCrossFadeTime(float ms) {
        ForEach([ms](FadedHLShelf& shelf) { shelf.SetCrossFadeTime(ms); });
    }

    /// Fade every channel to new parameters, from its next active block on.
    void SetParameters(HLShelfParameters const& parameters);
    void SetAll(float gain, float gainLow, float gainMed, float gainHigh, float freqLow, float freqHigh);
    void ResetToDefaults();

    /// Filters each channel. An inactive channel's output is cleared; its filters and its fade wait. Real-time safe.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Process of two banks, all channels active, outputs over inputs: in one pass, which takes little longer than one
    /// of them. Real-time safe.
    static void ProcessBoth(MultiFadedHLShelf& a, float** channelsOfA, MultiFadedHLShelf& b, float** channelsOfB,
                            unsigned long numSamples);
    /// The filters that Process would run, for whoever runs them together with something else: they hold until a setter
    /// is called.
    /// @param found  one for each channel
    /// @return false if a channel fades or is about to: then Process is the way
    bool FindFilters(orvandsp::kernels::Shelf* found) noexcept;

private:
    template <typename Jobs>
    void BeginBlock(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs, Jobs& jobs);
    void FinishBlock(float** outputs, unsigned long numSamples, short const* activeInputs);
};

}  // namespace Lume
