#include "orvanverb/design/set_measurement.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <utility>
#include <vector>

#include "dsp/constants.h"
#include "filters/biquad_cascade.h"
#include "hrtf/hrtf_filtering.h"
#include "orvanverb/design/sphere.h"

namespace program {

namespace {

MeasuredSet MeasurementsOf(Lume::HrtfHeaderInfos const& header) {
    return {static_cast<int>(header.samplingRate), {},         header.owner, header.subject, header.copyright,
            header.originalMeasurementSet,         header.date};
}

std::vector<float> ResponseOfCascade(std::span<float const> coefficients) {
    constexpr std::size_t length = 2048;  // a pole at 0.995 has fallen by 89 dB
    std::vector<double> signal(length, 0.0);
    signal[0] = coefficients.empty() ? 0.0 : static_cast<double>(coefficients[0]);
    for (std::size_t place = 1; place + 4 <= coefficients.size(); place += 4) {
        double state1 = 0.0, state2 = 0.0;
        const auto at = [&](std::size_t i) { return static_cast<double>(coefficients[place + i]); };
        for (double& sample : signal) {
            const double output = sample + state1;
            state1 = at(0) * sample - at(2) * output + state2;
            state2 = at(1) * sample - at(3) * output;
            sample = output;
        }
    }
    return {signal.begin(), signal.end()};
}

/// How much later than from the side the ear that faces a source hears it, in samples. Filters with the least phase
/// tell the ears apart, but not directions; what is earlier at one ear than from elsewhere has to come from geometry.
double NearEarDelay(Lume::CartesianVector const& position, int samplerate) {
    // Of a KEMAR manikin: with it filters for two loudspeakers at different angles cancel best. Less than the radius of
    // a sphere with the same delay between the ears.
    constexpr double earFromCentre = 0.071;  // [m]
    constexpr double speedOfSound = 340.0;   // [m/s]
    if (Length(position) == 0.0f) return 0.0;
    return (1.0 - std::abs(static_cast<double>(Unit(position).x))) * earFromCentre / speedOfSound * samplerate;
}

}  // namespace

MeasuredSet MeasureSet(Lume::HrtfData const& filters) {
    Lume::HrtfHeaderInfos const& header = filters.GetHrtfHeaderInfos();
    MeasuredSet set = MeasurementsOf(header);
    for (unsigned int i = 0; i < filters.GetNumPoints(); ++i) {
        Lume::HrtfPoint const& point = filters.GetHrtfPoint(i);
        MeasuredSet::Direction direction{point.position, {}};
        for (unsigned int e = 0; e < 2; ++e) {
            const std::span<float const> ear = Lume::EarCoefficients(point, e);
            if (header.filterType == Lume::hrtfFIR) {
                direction.ears[e].response.assign(ear.begin(), ear.end());
                continue;
            }
            direction.ears[e].response = ResponseOfCascade(ear);
            // The delay of a point is how much later the left ear hears [ms].
            const double later = static_cast<double>(e == 0 ? point.itd : -point.itd);
            direction.ears[e].delaySamples =
                NearEarDelay(point.position, set.samplerate) + std::max(later, 0.0) * 0.001 * header.samplingRate;
        }
        set.directions.push_back(std::move(direction));
    }
    return set;
}

MeasuredSet MeasurePairs(Lume::SymmetricTransauralDataLoader const& pairs) {
    MeasuredSet set = MeasurementsOf(pairs.GetHrtfHeaderInfos());
    for (unsigned int i = 0; i < pairs.GetNumPoints(); ++i) {
        Lume::HrtfPoint const& point = pairs.GetHrtfPoint(i);
        std::array<std::vector<float>, 2> inverses;  // of the filters of sum and difference
        for (const unsigned int number : {0u, 1u}) {
            const std::span<float const> filter = Lume::EarCoefficients(point, number);
            std::vector<float> inverse(filter.begin(), filter.end());
            Lume::InvertBiquadsCascades(inverse.data(), static_cast<unsigned int>(inverse.size()));
            inverses[number] = ResponseOfCascade(inverse);
        }
        // The filters are 1 / (2 sqrt2 (near + far)) and 1 / (2 sqrt2 (near - far)).
        constexpr float scale = 0.25f / orvandsp::sqrt2;
        MeasuredSet::Direction left{point.position, {}};
        for (const std::size_t ear : {0u, 1u}) {
            std::vector<float>& response = left.ears[ear].response;
            for (std::size_t n = 0; n < inverses[0].size(); ++n)
                response.push_back(scale *
                                   (ear == 0 ? inverses[0][n] + inverses[1][n] : inverses[0][n] - inverses[1][n]));
            left.ears[ear].delaySamples = NearEarDelay(point.position, set.samplerate);
        }
        MeasuredSet::Direction right{{-point.position.x, point.position.y, point.position.z},
                                     {left.ears[1], left.ears[0]}};
        set.directions.push_back(std::move(left));
        set.directions.push_back(std::move(right));
    }
    return set;
}

}  // namespace program
