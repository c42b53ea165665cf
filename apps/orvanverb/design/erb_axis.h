#pragma once

#include <cstddef>
#include <vector>

namespace program {

/// A fine axis of frequencies, and bands as wide as the ear's filters on it, on which filters are compared.
///
/// Widths are in ERBs (Glasberg and Moore, "Derivation of auditory filter shapes from notched-noise data", Hearing
/// Research 47, 1990). Points lie from 30 Hz to half the sample rate, at most 0.1 ERB and at most 60 Hz apart: a pole
/// near the unit circle is no wider than that, and must not hide between two points. Bands are one ERB wide, with their
/// centres half an ERB apart from 100 Hz to 16 kHz, or as far as the rate allows.
class ErbAxis {
public:
    explicit ErbAxis(double samplerate);

    struct Band {
        std::size_t first;  // point
        std::vector<double> weights;
    };

    std::size_t NumPoints() const noexcept { return frequencies.size(); }
    std::vector<double> const& Frequencies() const noexcept { return frequencies; }  // [Hz]
    std::vector<double> const& Widths() const noexcept { return widths; }            // of the points [ERB]
    std::vector<Band> const& Bands() const noexcept { return bands; }

    /// Mean power of each band, in decibels. @param level  of each point [dB]
    std::vector<double> BandLevels(std::vector<double> const& level) const;

private:
    std::vector<double> frequencies, widths;
    std::vector<Band> bands;
};

/// 10 log10, bounded at -120 dB.
double Decibels(double power);

}  // namespace program
