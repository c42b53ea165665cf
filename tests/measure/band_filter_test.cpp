#include "measure/band_filter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>

namespace {

using namespace orvanmeasure;

/// Attenuation at a frequency [dB], from the impulse response.
double AttenuationDb(Band const& band, double sampleRate, double frequency) {
    const BandFilter filter(band, sampleRate);
    std::vector<double> impulse(4 * filter.RingLength(), 0.0);
    impulse[0] = 1.0;
    filter.Forward(impulse);
    std::complex<double> sum = 0.0;
    for (std::size_t n = 0; n < impulse.size(); ++n)
        sum += impulse[n] * std::polar(1.0, -2.0 * std::numbers::pi * frequency / sampleRate * static_cast<double>(n));
    return -20.0 * std::log10(std::abs(sum));
}

// Red if edges are misplaced, if the prewarping is lost, or if poles pair up wrongly. The limits are those of class 1
// in IEC 61260-1 for octaves, at these fractions of the centre.
TEST(BandFilter, StaysWithinTheLimitsOfClassOne) {
    for (const double sampleRate : {44100.0, 192000.0}) {
        for (const BandWidth width : {BandWidth::octave, BandWidth::third}) {
            for (Band const& band : Bands(width, sampleRate)) {
                SCOPED_TRACE(band.name + " Hz at " + std::to_string(sampleRate));
                // Steps of an octave from the centre; those of a third are as far from it in relative bandwidth.
                const auto at = [&](double octaves) {
                    if (width == BandWidth::octave) return band.centreHz * std::pow(10.0, 0.3 * octaves);
                    const double ratio =
                        (std::pow(10.0, 0.05) - std::pow(10.0, -0.05)) / (std::pow(10.0, 0.15) - std::pow(10.0, -0.15));
                    const double shift = std::pow(10.0, 0.3 * octaves) - std::pow(10.0, -0.3 * octaves);
                    const double half = 0.5 * shift * ratio;
                    return band.centreHz * (half + std::sqrt(half * half + 1.0));
                };
                EXPECT_NEAR(AttenuationDb(band, sampleRate, at(0.0)), 0.0, 0.01);
                for (const double inner : {-0.25, 0.25}) EXPECT_LT(AttenuationDb(band, sampleRate, at(inner)), 0.6);
                EXPECT_NEAR(AttenuationDb(band, sampleRate, band.lowHz), 3.01, 0.05);
                EXPECT_NEAR(AttenuationDb(band, sampleRate, band.highHz), 3.01, 0.05);
                // 39 dB, but where the transform bends the scale near half the sample rate; the class wants 17.5.
                EXPECT_GT(AttenuationDb(band, sampleRate, at(-1.0)), 30.0);
                const double above = at(1.0);
                EXPECT_TRUE(above >= 0.5 * sampleRate || AttenuationDb(band, sampleRate, above) > 35.0);
            }
        }
    }
}

// Red if the filter runs forwards: its ringing, 0.1 s here, would hide the decay.
TEST(BandFilter, BackwardsKeepsADecayThatIsShorterThanItsRinging) {
    const double sampleRate = 48000.0, decaySeconds = 0.06;
    const Band band = Bands(BandWidth::octave, sampleRate)[1];  // 125 Hz
    const BandFilter filter(band, sampleRate);
    ASSERT_GT(static_cast<double>(filter.RingLength()) / sampleRate, decaySeconds);
    std::vector<double> signal(4800);
    for (std::size_t n = 0; n < signal.size(); ++n) {
        const double seconds = static_cast<double>(n) / sampleRate;
        signal[n] =
            std::exp(-std::log(1e3) * seconds / decaySeconds) * std::sin(2.0 * std::numbers::pi * 125.0 * seconds);
    }
    std::vector<double> filtered = signal;
    filter.Backward(filtered);
    const auto peak = [](std::vector<double> const& x, std::size_t from) {
        return *std::max_element(x.begin() + static_cast<std::ptrdiff_t>(from),
                                 x.begin() + static_cast<std::ptrdiff_t>(from) + 384);  // one period
    };
    const double fall = peak(signal, 0) / peak(signal, 1920);
    EXPECT_NEAR(peak(filtered, 0) / peak(filtered, 1920), fall, 0.001 * fall);
}

TEST(Bands, AreNamedAsUsualAndEndBelowHalfTheSampleRate) {
    std::string octaves, thirds;
    for (Band const& band : Bands(BandWidth::octave, 44100.0)) octaves += band.name + " ";
    EXPECT_EQ(octaves, "63 125 250 500 1000 2000 4000 8000 ");
    for (Band const& band : Bands(BandWidth::third, 48000.0)) thirds += band.name + " ";
    EXPECT_EQ(thirds,
              "50 63 80 100 125 160 200 250 315 400 500 630 800 1000 1250 1600 2000 2500 3150 4000 5000 6300 8000 "
              "10000 12500 16000 20000 ");
}

}  // namespace
