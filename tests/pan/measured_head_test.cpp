#include <gtest/gtest.h>
#include <mysofa.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <vector>

#include "hrtf/hrtf_info.h"
#include "math/fft.h"
#include "pan/binaural/binaural_panning_direct.h"
#include "pan/panning_support.h"
#include "support/clicks.h"

// The built-in set against the measurements that it was made from: 710 directions around a KEMAR manikin, by Gardner
// and Martin, "HRTF measurements of a KEMAR", J. Acoust. Soc. Am. 97(6), 1995.

namespace {

constexpr double pi = std::numbers::pi;
constexpr double rate = 44100.0;

using Rows = std::vector<std::vector<float>>;

/// The measured responses of the left ear, in the order of the grid: source to the left by steps from ahead.
Rows LoadMeasured() {
    int error = 0;
    const std::unique_ptr<MYSOFA_HRTF, void (*)(MYSOFA_HRTF*)> sofa(
        mysofa_load("/usr/share/libmysofa/MIT_KEMAR_normal_pinna.sofa", &error), mysofa_free);
    Rows rows;
    if (!sofa) return rows;
    for (unsigned int i = 0; i < sofa->M; ++i) {
        float const* const left = sofa->DataIR.values + static_cast<std::size_t>(i) * sofa->R * sofa->N;
        rows.emplace_back(left, left + sofa->N);
    }
    return rows;
}

/// The directions of the grid.
struct Grid {
    Grid() {
        const Lume::HrtfInfoBinauralBiquadFullSphere info;
        for (unsigned int i = 0; i < info.numElevations; ++i) {
            const double elevation =
                static_cast<double>(info.lowestElevation + static_cast<int>(i) * info.elevationStep);
            const double top = std::sin(std::min(elevation + 5.0, 90.0) * pi / 180.0);
            const double band = top - std::sin((elevation - 5.0) * pi / 180.0);
            for (unsigned int j = 0; j < info.az[i]; ++j) {
                const double azimuth = -360.0 * j / info.az[i];
                positions.push_back(At(azimuth, elevation));
                farSide.push_back(std::sin(azimuth * pi / 180.0) > 1e-9);
                mirror.push_back(info.offsets[i] + (info.az[i] - j) % info.az[i]);
                weights.push_back(band / info.az[i]);
            }
        }
    }
    std::vector<Lume::CartesianVector> positions;
    std::vector<bool> farSide;
    std::vector<std::size_t> mirror;
    std::vector<double> weights;  // solid angles, not normalised
};

constexpr unsigned int fftSize = 8192;

/// From 0 Hz to half the rate.
using Spectrum = std::vector<std::complex<double>>;

double FrequencyOf(std::size_t bin) {
    return static_cast<double>(bin) * rate / fftSize;
}

Spectrum SpectrumOf(std::vector<float> const& response) {
    static const orvandsp::FFT<float> fft(fftSize, 1.0f, 1.0f, 1.0f, 1.0f);
    std::vector<std::complex<float>> transform(response.begin(), response.end());
    transform.resize(fftSize);
    fft.process(transform.data(), orvandsp::FFT<float>::forward);
    return {transform.begin(), transform.begin() + fftSize / 2 + 1};
}

double ErbNumber(double hertz) {
    return 21.4 * std::log10(1.0 + 0.00437 * hertz);
}

/// Power [dB] of a response, divided by the power of a field in each bin, smoothed over one ERB at 73 centres half an
/// ERB apart from 100 Hz to 16 kHz (Glasberg and Moore, "Derivation of auditory filter shapes from notched-noise data",
/// Hearing Research 47, 1990).
std::vector<double> SmoothedDb(Spectrum const& spectrum, std::vector<double> const& field) {
    constexpr int numCentres = 73;
    const double lowest = ErbNumber(100.0), step = (ErbNumber(16000.0) - lowest) / (numCentres - 1);
    double power[numCentres] = {}, sum[numCentres] = {};
    for (std::size_t k = 0; k < spectrum.size(); ++k) {
        const double place = (ErbNumber(FrequencyOf(k)) - lowest) / step;
        for (int centre = std::max(0, static_cast<int>(place - 1.5));
             centre < std::min(static_cast<int>(place + 2.5), numCentres); ++centre) {
            const double weight = std::clamp((0.75 - step * std::abs(place - centre)) / 0.5, 0.0, 1.0);
            power[centre] += weight * std::norm(spectrum[k]) / field[k];
            sum[centre] += weight;
        }
    }
    std::vector<double> result;
    result.reserve(numCentres);
    for (int i = 0; i < numCentres; ++i) result.push_back(10.0 * std::log10(power[i] / sum[i]));
    return result;
}

/// Lag of one response behind another [us]: the peak of their cross-correlation between 300 and 1500 Hz.
double LagMicroseconds(Spectrum const& first, Spectrum const& second) {
    const auto correlation = [&](double microseconds) {
        double sum = 0.0;
        for (std::size_t k = 56; k <= 278; ++k)
            sum += std::real(first[k] * std::conj(second[k]) *
                             std::polar(1.0, 2.0 * pi * FrequencyOf(k) * microseconds * 1e-6));
        return sum;
    };
    double best = 0.0, most = -1e300;
    for (double step : {40.0, 1.0}) {
        const double centre = best, reach = step == 40.0 ? 1200.0 : 40.0;
        for (double lag = centre - reach; lag <= centre + reach; lag += step)
            if (const double value = correlation(lag); value > most) most = value, best = lag;
    }
    return best;
}

struct Figures {
    explicit Figures(std::vector<double> values) {
        std::sort(values.begin(), values.end());
        for (const double value : values) mean += value / static_cast<double>(values.size());
        percentile95 = values[values.size() * 95 / 100];
        worst = values.back();
    }
    double mean = 0.0, percentile95, worst;
};

double Rms(std::vector<double> const& values) {
    double sum = 0.0;
    for (const double value : values) sum += value * value;
    return std::sqrt(sum / static_cast<double>(values.size()));
}

// Red if the set, its loading, the panner or the filters turn, mirror, detune or delay anything.
TEST(MeasuredHead, IsRenderedFromAllDirections) {
    const Rows measured = LoadMeasured();
    const Grid grid;
    ASSERT_EQ(measured.size(), grid.positions.size()) << "install libmysofa-dev, which brings the measurements";
    const std::size_t numRows = measured.size();
    std::vector<Spectrum> spectra;
    std::vector<double> field(fftSize / 2 + 1), ones(field.size(), 1.0);
    double totalWeight = 0.0;
    for (std::size_t row = 0; row < numRows; ++row) {
        spectra.push_back(SpectrumOf(measured[row]));
        totalWeight += grid.weights[row];
        for (std::size_t k = 0; k < field.size(); ++k) field[k] += grid.weights[row] * std::norm(spectra[row][k]);
    }
    for (double& power : field) power /= totalWeight;

    // Level and colour of each direction, against the measured response equalised by the diffuse field, and time
    // differences, delay and filters together.
    Lume::BinauralPanningDirect panner(1, 2);
    std::vector<std::vector<double>> errors[2];
    std::vector<double> itdErrors, colour(73);
    double level = 0.0, worstItd = 0.0;
    for (std::size_t row = 0; row < numRows; ++row) {
        PlaceAndWait(panner, grid.positions[row]);
        const Channels out = ImpulseResponses(panner);
        const Spectrum ears[] = {SpectrumOf(out.data[0]), SpectrumOf(out.data[1])};
        Spectrum const* const targets[] = {&spectra[row], &spectra[grid.mirror[row]]};
        for (const std::size_t ear : {0u, 1u}) {
            std::vector<double> error = SmoothedDb(ears[ear], ones);
            const std::vector<double> target = SmoothedDb(*targets[ear], field);
            for (std::size_t k = 0; k < error.size(); ++k) {
                error[k] -= target[k];
                level += error[k] / static_cast<double>(2 * numRows * error.size());
                colour[k] += error[k] / static_cast<double>(2 * numRows);
            }
            errors[ear].push_back(error);
        }
        itdErrors.push_back(LagMicroseconds(ears[0], ears[1]) - LagMicroseconds(*targets[0], *targets[1]));
        worstItd = std::max(worstItd, std::abs(itdErrors.back()));
    }
    std::vector<double> all, far, interaural;
    for (std::size_t row = 0; row < numRows; ++row) {
        std::vector<double> difference(colour.size());
        for (const std::size_t ear : {0u, 1u}) {
            std::vector<double>& error = errors[ear][row];
            for (std::size_t k = 0; k < error.size(); ++k) {
                error[k] -= level;
                difference[k] += ear == 0 ? error[k] : -error[k];
            }
            all.push_back(Rms(error));
            if (grid.farSide[ear == 0 ? row : grid.mirror[row]]) far.push_back(all.back());
        }
        interaural.push_back(Rms(difference));
    }
    for (double& value : colour) value -= level;
    const Figures lsd(all), ild(interaural);
    // The set as it is: 0.274, 0.444, 0.656, 0.317; 0.341, 0.533, 0.672 dB.
    EXPECT_LE(lsd.mean, 0.28);
    EXPECT_LE(lsd.percentile95, 0.45);
    EXPECT_LE(lsd.worst, 0.70);
    EXPECT_LE(Figures(far).mean, 0.33);
    EXPECT_LE(ild.mean, 0.36);
    EXPECT_LE(ild.percentile95, 0.55);
    EXPECT_LE(ild.worst, 0.80);
    EXPECT_LE(Rms(colour), 0.20);
    EXPECT_NEAR(level, 10.0 * std::log10(0.5), 0.25);  // a source has the level of 1/sqrt(2) in each ear
    EXPECT_LE(Rms(itdErrors), 20.0);                   // 8.8 and 33 us
    EXPECT_LE(worstItd, 65.0);
}

// Around the head, over a steady tone, by a degree every 20 ms. Red if filters or delays change more roughly than their
// crossfades and glides allow. The filters step every five degrees; a crossfade of 5 ms is as wide as the band that the
// meter leaves out, and is what remains.
TEST(MeasuredHead, MovesWithoutClicks) {
    // Worst of these: -38.4, -35.4 and, with a crossfade of 15 ms, -47.9 dB.
    for (const auto& [tone, crossFade, limit] :
         {std::array{1000.0, 5.0, -37.0}, {3000.0, 5.0, -34.0}, {1000.0, 15.0, -46.5}}) {
        Lume::BinauralPanningDirect panner(1, 2);
        panner.Configure(48000.0f, 64, true);
        panner.SetFilterCrossFadeTime(static_cast<float>(crossFade));
        std::vector<std::vector<float>> recording(2);
        Channels in(1, 64, 0.0f), out(2, 64, 0.0f);
        std::size_t sample = 0;
        const int numBlocks = 15 * 600;
        for (int block = 0; block < numBlocks; ++block) {
            // A steady tone at both ends, for the meter.
            const int step = std::clamp(block / 15 - 120, 0, 360);
            if (block % 15 == 0) panner.SetSourcePosition(0, At(static_cast<double>(step)), false);
            for (float& x : in.data[0])
                x = static_cast<float>(std::sin(2.0 * pi * tone / 48000.0 * static_cast<double>(sample++)));
            panner.Process(out.pointers.data(), in.pointers.data(), 64, orvandsp::allActiveInputs);
            for (const std::size_t e : {0u, 1u})
                recording[e].insert(recording[e].end(), out.pointers[e], out.pointers[e] + 64);
        }
        const ToneResidual residual = MeasureToneResidual(recording, 48000.0, tone);
        EXPECT_LT(residual.peakDb, limit) << tone << " Hz, at " << residual.peakSeconds << " s";
    }
}

}  // namespace
