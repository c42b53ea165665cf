#include "measure/band.h"

#include <cmath>

namespace orvanmeasure {

namespace {

// The preferred numbers of a decade in tenths, after ISO 266.
constexpr char const* nominal[] = {"1", "1.25", "1.6", "2", "2.5", "3.15", "4", "5", "6.3", "8"};
constexpr int tenthsOf1Hz = 30;  // 1 kHz is 30 tenths of a decade above 1 Hz

/// 31.5, 125, 3150: the nominal frequency of a tenth of a decade above 1 Hz.
std::string NominalName(int tenths) {
    std::string digits = nominal[tenths % 10];
    int zeros = tenths / 10;
    if (const std::size_t point = digits.find('.'); point != std::string::npos) {
        std::string fraction = digits.substr(point + 1);
        digits.resize(point);
        while (zeros > 0 && !fraction.empty()) {
            digits += fraction.front();
            fraction.erase(0, 1);
            --zeros;
        }
        if (!fraction.empty()) return digits + "." + fraction;
    }
    return digits + std::string(static_cast<std::size_t>(zeros), '0');
}

}  // namespace

std::vector<Band> Bands(BandWidth width, double sampleRate) {
    const bool octaves = width == BandWidth::octave;
    const int step = octaves ? 3 : 1;       // tenths of a decade
    const int first = octaves ? 18 : 17;    // 63 Hz, 50 Hz
    const int last = octaves ? 42 : 43;     // 16 kHz, 20 kHz
    constexpr double highest = 0.98 * 0.5;  // the edge stays clear of half the sample rate
    std::vector<Band> bands;
    for (int tenths = first; tenths <= last; tenths += step) {
        const double centre = 1000.0 * std::pow(10.0, (tenths - tenthsOf1Hz) / 10.0);
        const double half = std::pow(10.0, step / 20.0);
        if (centre * half > highest * sampleRate) break;
        bands.push_back({NominalName(tenths), centre, centre / half, centre * half});
    }
    return bands;
}

Band WholeSpectrum(double sampleRate) {
    return {"all", 0.0, 0.0, 0.5 * sampleRate};
}

double ShortestDecay(Band const& band) {
    return 4.0 / band.WidthHz();
}

}  // namespace orvanmeasure
