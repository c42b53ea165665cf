#include "pan/binaural/ambisonic_ears_fit.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <complex>
#include <span>

#include "dsp/orvan_dsp_exception.h"
#include "harmonics/ambisonic_encoding.h"
#include "math/fft.h"
#include "math/pseudo_inverse.h"
#include "pan/binaural/binaural_panning_direct.h"
#include "parameters/lume_default_parameters.h"

namespace Lume {

namespace {

using Spectrum = std::vector<std::complex<float>>;  // the bins from 0 Hz to half the rate
using orvandsp::FFT;
using orvandsp::MatrixFloat;

constexpr double pi = 3.14159265358979323846;
constexpr float speedOfSound = 343.0f;      // [m/s]
constexpr unsigned int blockSize = 64;      // of the measurement [samples]
constexpr float responseSeconds = 0.0106f;  // of a head's impulse response, with some room around
constexpr float leadSeconds = 0.0015f;      // before the sound arrives, where the fit rings
constexpr unsigned int directionsPerChannel = 10;

/// Directions that are spread evenly over the sphere: a spiral of golden angles.
std::vector<CartesianVector> SpreadDirections(unsigned int number) {
    constexpr double goldenAngle = 2.39996322972865332;
    std::vector<CartesianVector> directions;
    for (unsigned int i = 0; i < number; ++i) {
        const double z = 1.0 - (2.0 * i + 1.0) / number;
        const double radius = std::sqrt(1.0 - z * z);
        directions.push_back({static_cast<float>(radius * std::cos(goldenAngle * i)),
                              static_cast<float>(radius * std::sin(goldenAngle * i)), static_cast<float>(z)});
    }
    return directions;
}

/// The height of the lowest direction of a set, on a sphere of radius 1.
float LowestHeight(Hrtf const& set) {
    float lowest = 1.0f;
    for (unsigned int i = 0; i < set.GetNumPoints(); ++i) {
        CartesianVector const& p = set.GetHrtfPoint(i).position;
        lowest = std::min(lowest, p.z / p.radius());
    }
    return lowest;
}

/// A direction itself, or below the lowest ring the one of that ring that has the same angle to the ear axis and lies
/// on the same side, in front or behind. The nearest measured one would let the time between the ears end in a jump.
CartesianVector Measured(CartesianVector const& direction, float lowest) {
    if (direction.z >= lowest) return direction;
    const float rest = 1.0f - lowest * lowest - direction.x * direction.x;
    if (rest < 0.0f) return direction;
    return {direction.x, std::copysign(std::sqrt(rest), direction.y), lowest};
}

/// The impulse responses of both ears for a source that stands somewhere, one behind the other.
std::vector<float> Measure(BinauralPanningDirect& ears, CartesianVector const& direction, unsigned int length) {
    std::vector<float> input(blockSize), response(2 * static_cast<std::size_t>(length));
    float* inputs[] = {input.data()};
    const auto run = [&](float* left, float* right) {
        float* outputs[] = {left, right};
        ears.Process(outputs, inputs, blockSize, orvandsp::allActiveInputs);
    };
    // The first call brings new filters, which crossfade, the second one delays that jump instead of gliding.
    float scratch[2][blockSize];
    for (const bool jump : {false, true}) {
        ears.SetSourcePosition(0, direction, jump);
        for (unsigned int done = 0; done < length; done += blockSize) run(scratch[0], scratch[1]);
    }
    ears.Clear();
    for (unsigned int done = 0; done < length; done += blockSize) {
        input[0] = done == 0 ? 1.0f : 0.0f;
        run(response.data() + done, response.data() + length + done);
    }
    return response;
}

/// Where the energy of all responses lies in the middle [samples].
double CentreOfEnergy(std::vector<std::vector<float>> const& responses, unsigned int length) {
    double energy = 0.0, moment = 0.0;
    for (auto const& response : responses) {
        for (std::size_t i = 0; i < response.size(); ++i) {
            const double e = std::pow(static_cast<double>(response[i]), 2);
            energy += e;
            moment += e * static_cast<double>(i % length);
        }
    }
    return energy > 0.0 ? moment / energy : 0.0;
}

/// Fits one ear. Responses and channels are spectra as if the centre of their energy were at time 0, so that phases
/// change slowly from bin to bin.
class EarFit {
public:
    EarFit(MatrixFloat newEncoding, unsigned int newSize, double newDelay)
        : encoding(std::move(newEncoding)),
          inverse(PseudoInverse(encoding)),
          size(newSize),
          delay(newDelay),
          transform(size, 1.0f, 1.0f, 1.0f, 1.0f / static_cast<float>(size)) {}

    /// @param responses     one per direction, `size` samples long
    /// @param firstByLevel  the first bin in which magnitudes count alone
    /// @param lead          where the centre of the energy comes to lie [samples]
    /// @return one response per channel
    std::vector<std::vector<float>> Fit(std::vector<std::vector<float>> const& responses, unsigned int firstByLevel,
                                        unsigned int lead) {
        std::vector<Spectrum> heard;
        heard.reserve(responses.size());
        for (auto const& response : responses) heard.push_back(ToSpectrum(response));
        const unsigned int numBins = size / 2 + 1;
        std::vector<Spectrum> channels(inverse.GetNumRows(), Spectrum(numBins));
        for (unsigned int k = 0; k < numBins; ++k) {
            for (unsigned int d = 0; d < heard.size(); ++d) {
                std::complex<float> wanted = heard[d][k];
                if (k >= firstByLevel) {
                    std::complex<float> before = 0.0f;
                    for (unsigned int c = 0; c < channels.size(); ++c) before += encoding[d][c] * channels[c][k - 1];
                    wanted = std::polar(std::abs(wanted), std::arg(before));
                }
                for (unsigned int c = 0; c < channels.size(); ++c) channels[c][k] += inverse[c][d] * wanted;
            }
        }
        std::vector<std::vector<float>> result;
        result.reserve(channels.size());
        for (Spectrum const& channel : channels) result.push_back(ToResponse(channel, lead));
        return result;
    }

private:
    Spectrum ToSpectrum(std::vector<float> const& response) {
        Spectrum work(response.begin(), response.end());
        transform.process(work.data(), FFT<float>::forward);
        work.resize(size / 2 + 1);
        Shift(work, -delay);
        return work;
    }

    std::vector<float> ToResponse(Spectrum spectrum, unsigned int lead) {
        Shift(spectrum, static_cast<double>(lead));
        spectrum.front() = spectrum.front().real();
        spectrum.back() = spectrum.back().real();
        spectrum.resize(size);
        for (unsigned int k = 1; k < size / 2; ++k) spectrum[size - k] = std::conj(spectrum[k]);
        transform.process(spectrum.data(), FFT<float>::inverse);
        std::vector<float> response;
        for (auto const& value : spectrum) response.push_back(value.real());
        return response;
    }

    /// Moves a signal to a later time. @param samples  any fraction, negative too
    void Shift(Spectrum& spectrum, double samples) const {
        for (std::size_t k = 0; k < spectrum.size(); ++k)
            spectrum[k] *= static_cast<std::complex<float>>(
                std::polar(1.0, -2.0 * pi * static_cast<double>(k) * samples / static_cast<double>(size)));
    }

    MatrixFloat encoding;  // directions x channels
    MatrixFloat inverse;
    unsigned int size;
    double delay;  // of the responses' energy [samples]
    FFT<float> transform;
};

/// Fades a response in and out at its ends, where nothing but the rest of the fit is.
void FadeEnds(std::vector<float>& response, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i) {
        const float gain = 0.5f - 0.5f * static_cast<float>(std::cos(pi * (i + 0.5) / count));
        response[i] *= gain;
        response[response.size() - 1 - i] *= gain;
    }
}

}  // namespace

AmbisonicEars MakeAmbisonicEars(std::unique_ptr<Hrtf> set, float rate, unsigned int order,
                                SphericalHarmonicsNormalization normalization, bool ambixAxes) {
    const float lowest = LowestHeight(*set);
    BinauralPanningDirect head(1, 2);
    if (!head.SetHrtf(std::move(set)))
        throw orvandsp::OrvanDspException("MakeAmbisonicEars: the set isn't one of filters for two ears", __FILE__,
                                          __LINE__);
    head.SetSamplerate(rate);
    head.SetMaxBlockSize(blockSize);

    const unsigned int size = std::bit_ceil(static_cast<unsigned int>(responseSeconds * rate));
    const unsigned int numChannels = (order + 1) * (order + 1);
    const std::vector<CartesianVector> directions =
        SpreadDirections(std::max(240u, directionsPerChannel * numChannels));
    MatrixFloat encoding(static_cast<unsigned int>(directions.size()), numChannels, 0.0f);
    std::vector<std::vector<float>> both, sides[2];
    for (unsigned int d = 0; d < directions.size(); ++d) {
        CartesianVector const& p = directions[d];
        const std::vector<double> gains = AmbisonicEncodingVector(
            order, ambixAxes ? CartesianVector{p.y, -p.x, p.z} : p, normalization, IncreasingDegrees);
        for (unsigned int c = 0; c < numChannels; ++c) encoding[d][c] = static_cast<float>(gains[c]);
        both.push_back(Measure(head, Measured(p, lowest), size));
        const std::span<float const> ears = both.back(), left = ears.first(size), right = ears.subspan(size);
        sides[0].emplace_back(left.begin(), left.end());
        sides[1].emplace_back(right.begin(), right.end());
    }

    const double delay = CentreOfEnergy(both, size);
    const auto lead = static_cast<unsigned int>(delay + static_cast<double>(leadSeconds * rate));
    const float limitHz = static_cast<float>(order) * speedOfSound /
                          (2.0f * static_cast<float>(pi) * LumeDefaultParameters::DefaultHeadRadius);
    const auto firstByLevel = static_cast<unsigned int>(std::ceil(limitHz / rate * static_cast<float>(size)));

    EarFit fit(encoding, size, delay);
    AmbisonicEars result;
    result.numChannels = numChannels;
    result.length = size;
    result.latencySamples = static_cast<float>(static_cast<double>(lead) - delay);
    for (const bool isRight : {false, true}) {
        std::vector<float>& rows = isRight ? result.right : result.left;
        for (auto& response : fit.Fit(sides[isRight ? 1 : 0], firstByLevel, lead)) {
            FadeEnds(response, size / 16);
            rows.insert(rows.end(), response.begin(), response.end());
        }
    }
    return result;
}

}  // namespace Lume
