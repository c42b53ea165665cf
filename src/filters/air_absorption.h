#pragma once

#include "filters/hl_shelf.h"
#include "parameters/lume_default_parameters.h"

namespace Lume {

/// 1/sqrt(10): the highest rolloff frequency as a fraction of the sample rate.
constexpr float inv_sqrt_ten = 0.31622776f;
/// 1/sqrt(1000): the lower crossover as a fraction of the rolloff frequency.
constexpr float inv_sqrt_thousand = 0.03162278f;

/// What sound loses at high frequencies on its way through air, by distance: a shelf filter of one channel.
///
/// The loss grows with the distance d [m] and the square of the frequency: 0.002 dB per metre at 1 kHz. The high band
/// of the shelf holds the loss at the rolloff frequency f, the medium band that at f / sqrt(1000), which is a
/// thousandth of it, and the low band loses nothing. At 10 kHz and 100 m these are 20 dB and 0.02 dB.
///
/// Setters design the shelf in the calling thread; its taps change at once, without a crossfade.
class AirAbsorption : public orvandsp::SignalProcessing {
public:
    /// Beyond it the loss stays the same [m].
    static constexpr float maxDistance = LumeDefaultParameters::maxSourceDistance;
    static constexpr float DefaultDistance = 0.0f;  // [m]
    static constexpr HLShelfParameters DefaultHLShelfParams = {
        .gain = 0.0f,
        .gainLow = 0.0f,
        .gainMed = 0.0f,
        .gainHigh = 0.0f,
        .freqLow = inv_sqrt_thousand * LumeDefaultParameters::DefaultAirRolloffFrequency,
        .freqHigh = LumeDefaultParameters::DefaultAirRolloffFrequency};

    AirAbsorption();

    /// The distance that sound has gone [m]; a negative one counts as positive.
    void SetDistance(float metres);
    /// [Hz], kept between 0 and inv_sqrt_ten times the sample rate.
    void SetRolloffFrequency(float hertz);
    /// Distance 0 and the default rolloff, for the next setter to build on: the filter itself stays as it is until
    /// then.
    void ResetToDefaults();
    /// Computes the gains of the parameters from distance and rolloff, without a design of the filter.
    void updateHLShelfGains();

    /// Filters one channel; output may be input. Real-time safe.
    void Process(float* output, float* input, unsigned long numSamples) { shelf.Process(output, input, numSamples); }
    /// The same on channel 0. When it isn't active the output stays as it is.
    void Process(float** outputs, float** inputs, unsigned long numSamples, short const* activeInputs) override;
    /// Clears if the rate [Hz] is new, and limits the rolloff frequency anew.
    void SetSamplerate(float newSamplerate) override;
    void SetMaxBlockSize(unsigned int blockSize) override { buffersize = blockSize; }
    void Clear() override { shelf.Clear(); }
    /// What the filter is designed from, as distance, rolloff and sample rate make it.
    HLShelfParameters const& GetParameters() const noexcept { return parameters; }
    /// The filter itself, for banks that run several at once.
    HLShelf& GetShelf() noexcept { return shelf; }

private:
    HLShelf shelf;
    HLShelfParameters parameters = DefaultHLShelfParams;
    float distance = DefaultDistance;  // [m]
};

}  // namespace Lume
