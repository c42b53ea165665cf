#pragma once

#include <string>
#include <vector>

namespace orvanmeasure {

/// A band of frequencies of constant relative width, after IEC 61260-1: base ten, 1 kHz among the centres.
struct Band {
    std::string name;       ///< nominal centre, "125" or "3150"; "all" for the whole spectrum
    double centreHz = 0.0;  ///< exact; 0 for the whole spectrum
    double lowHz = 0.0;
    double highHz = 0.0;

    double WidthHz() const noexcept { return highHz - lowHz; }
    bool IsWhole() const noexcept { return centreHz == 0.0; }
};

enum class BandWidth { octave, third };

/// The bands from 63 Hz (octaves) or 50 Hz (thirds) to the last one that ends below half the sample rate, at most 16 or
/// 20 kHz.
std::vector<Band> Bands(BandWidth width, double sampleRate);

/// The whole spectrum up to half the sample rate.
Band WholeSpectrum(double sampleRate);

/// The shortest decay time that a filtered response can show [s]: below it one sees the filter. The band's width times
/// this time is 4, after F. Jacobsen and J. H. Rindel, "Time reversed decay measurements", J. Sound Vib. 117(1), 1987,
/// who found it for filters that run backwards in time, as ours do; forwards it were 16.
double ShortestDecay(Band const& band);

}  // namespace orvanmeasure
