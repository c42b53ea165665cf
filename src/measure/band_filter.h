#pragma once

#include <span>
#include <vector>

#include "measure/band.h"

namespace orvanmeasure {

/// Cuts a band out of a signal: a Butterworth band-pass of twelve poles, -3 dB at the band's edges, 39 dB down at the
/// centres of the neighbouring octaves, so that a neighbour that sounds longer stays out of a decay's first 35 dB. It
/// stays within the limits of IEC 61260-1, class 1.
///
/// It runs forwards or backwards in time. Backwards it rings before each sound instead of after it: what decays
/// exponentially comes out as the same exponential, however short it is beside the filter's own ringing. Double
/// precision, and sections instead of a transform: the float transform of `math/fft.h` has its noise 130 dB below the
/// direct sound, everywhere, which is too much for the end of a tail in a weak band.
class BandFilter {
public:
    /// @param band  the whole spectrum, or a band whose edges lie below half the sample rate
    BandFilter(Band const& band, double sampleRate);

    /// Filters in place, from silence.
    void Forward(std::span<double> signal) const;
    void Backward(std::span<double> signal) const;
    /// Forwards, then backwards: no frequency is delayed, the ringing stands on both sides, and the band's edges are 6
    /// dB down.
    void ZeroPhase(std::span<double> signal) const;

    /// How much room a signal needs at the end where the filter rings: in it the ringing falls by about 70 dB
    /// [samples].
    std::size_t RingLength() const noexcept { return ringLength; }

private:
    struct Section {
        double a1, a2;
    };

    std::vector<Section> sections;  // zeros at 0 Hz and half the sample rate; none for the whole spectrum
    double gain = 1.0;              // of each section
    std::size_t ringLength = 0;
};

}  // namespace orvanmeasure
