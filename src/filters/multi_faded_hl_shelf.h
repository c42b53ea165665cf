#pragma once

#include <vector>

#include "filters/faded_hl_shelf.h"

namespace Lume {

/// A bank of FadedHLShelf, one per channel, with as many inputs as outputs.
class MultiFadedHLShelf : public orvandsp::SignalProcessing {
public:
    /// Channels that fade in FadedHLShelf::DefaultHLShelfCrossFadeTime.
    explicit MultiFadedHLShelf(unsigned int numChannels);

    /// Grows or shrinks the bank. New channels are flat, know nothing of earlier settings, and fade in 5 ms until
    /// SetCrossFadeTime is called.
    void SetNumChannels(unsigned int numChannels);
    /// [ms], for all channels, from their next fade on.
    void SetCrossFadeTime(float ms);

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
    /// @param filters  one for each channel
    /// @return false if a channel fades or is about to: then Process is the way
    bool FindFilters(orvandsp::kernels::Shelf* filters) noexcept;
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override;
    void Clear() override;

private:
    template <typename Jobs>
    void BeginBlock(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs, Jobs& jobs);
    void FinishBlock(float** outputs, unsigned long numSamples, short const* activeInputs);

    std::vector<FadedHLShelf> shelves;
};

}  // namespace Lume
