#include "decoders/ambisonic/all_rad_decoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <set>

#include "geometry/vector_algebra.h"
#include "harmonics/ambisonic_encoding.h"

namespace Lume {

namespace {

using Triangle = std::array<std::size_t, 3>;

/// The triangles of the convex hull of points on a sphere: planes that have no point outside. Of four or more in one
/// plane every triangle is there, which does no harm to panning.
std::vector<Triangle> HullTriangles(std::vector<CartesianVector> const& points) {
    constexpr float tolerance = 1e-4f;
    std::vector<Triangle> triangles;
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (std::size_t j = i + 1; j < points.size(); ++j) {
            for (std::size_t k = j + 1; k < points.size(); ++k) {
                CartesianVector normal = Cross(points[j] - points[i], points[k] - points[i]);
                const float length = Length(normal);
                if (length < tolerance) continue;
                normal = normal / length;
                float lowest = 0.0f, highest = 0.0f;
                for (CartesianVector const& p : points) {
                    const float height = Dot(normal, p - points[i]);
                    lowest = std::min(lowest, height);
                    highest = std::max(highest, height);
                }
                const bool isOnHull = lowest > -tolerance || highest < tolerance;
                if (isOnHull && std::abs(Dot(normal, points[i])) > tolerance) triangles.push_back({i, j, k});
            }
        }
    }
    return triangles;
}

/// The gains, of power 1, of the triangle around a direction.
struct Share {
    Triangle triangle{};
    std::array<double, 3> gains{};
};

Share SharesOf(CartesianVector const& d, std::vector<CartesianVector> const& points,
               std::vector<Triangle> const& triangles) {
    Share best;
    double bestSmallest = -1e9;
    for (Triangle const& t : triangles) {
        CartesianVector const &a = points[t[0]], &b = points[t[1]], &c = points[t[2]];
        const float volume = Dot(Cross(a, b), c);
        if (std::abs(volume) < 1e-6f) continue;
        std::array<double, 3> gains{static_cast<double>(Dot(Cross(b, c), d) / volume),
                                    static_cast<double>(Dot(Cross(c, a), d) / volume),
                                    static_cast<double>(Dot(Cross(a, b), d) / volume)};
        const double smallest = *std::min_element(gains.begin(), gains.end());
        if (smallest <= bestSmallest) continue;
        bestSmallest = smallest;
        double power = 0.0;
        for (double& gain : gains) {
            gain = std::max(gain, 0.0);
            power += gain * gain;
        }
        for (double& gain : gains) gain /= std::sqrt(power);
        best = {t, gains};
    }
    return best;
}

}  // namespace

AllRadDecoder::AllRadDecoder(unsigned int numChannels, unsigned int numberOfOutputs)
    : mixer(numChannels, numberOfOutputs), matrix(numChannels, numberOfOutputs, 0.0) {
    initDecoder(numChannels, numberOfOutputs);
}

void AllRadDecoder::SetLoudspeakerPositions(CartesianVector const* positions) {
    constexpr unsigned int numDirections = 2500;  // many more than channels: the sums are right within a percent
    constexpr double goldenAngle = 2.39996322972865332;
    std::vector<CartesianVector> points;
    for (unsigned int j = 0; j < numOutputs; ++j)
        points.push_back(positions[j] / std::max(positions[j].radius(), 1e-6f));
    for (const float z : {1.0f, -1.0f})
        if (std::none_of(points.begin(), points.begin() + numOutputs,
                         [z](CartesianVector const& p) { return p.z * z > 0.5f; }))
            points.push_back({0.0f, 0.0f, z});
    const std::vector<Triangle> triangles = HullTriangles(points);
    // Of an imaginary loudspeaker, who shares its signal.
    std::vector<std::set<std::size_t>> neighbours(points.size());
    for (Triangle const& t : triangles)
        for (const std::size_t corner : t)
            for (const std::size_t other : t)
                if (corner >= numOutputs && other < numOutputs) neighbours[corner].insert(other);

    const auto order = static_cast<unsigned int>(std::lround(std::sqrt(static_cast<double>(numInputs)))) - 1;
    std::vector<double> weights;
    AmbisonicMaxReOptimizedGains(order, weights);
    for (unsigned int i = 0; i < numInputs; ++i) std::fill_n(matrix[i].begin(), numOutputs, 0.0);
    std::vector<std::vector<double>> encodings;
    for (unsigned int n = 0; n < numDirections; ++n) {
        const double z = 1.0 - (2.0 * n + 1.0) / numDirections, radius = std::sqrt(1.0 - z * z);
        const CartesianVector direction{static_cast<float>(radius * std::cos(goldenAngle * n)),
                                        static_cast<float>(radius * std::sin(goldenAngle * n)), static_cast<float>(z)};
        encodings.push_back(AmbisonicEncodingVector(order, direction, SchmidtSeminormalized3D, IncreasingDegrees));
        std::vector<double> gains(numOutputs, 0.0);
        const Share share = SharesOf(direction, points, triangles);
        for (unsigned int corner = 0; corner < 3; ++corner) {
            const std::size_t point = share.triangle[corner];
            if (point < numOutputs) {
                gains[point] += share.gains[corner];
            } else {
                for (const std::size_t other : neighbours[point])
                    gains[other] += share.gains[corner] / std::sqrt(static_cast<double>(neighbours[point].size()));
            }
        }
        for (unsigned int i = 0; i < numInputs; ++i) {
            const double degree = std::floor(std::sqrt(i + 0.5));
            const double signal = encodings.back()[i] * (2.0 * degree + 1.0) * weights[i] / numDirections;
            for (unsigned int j = 0; j < numOutputs; ++j) matrix[i][j] += signal * gains[j];
        }
    }
    float lowest = 1.0f;
    for (unsigned int j = 0; j < numOutputs; ++j) lowest = std::min(lowest, points[j].z);
    double power = 0.0;  // mean over the directions of a wave that are no lower than the loudspeakers
    const auto numAbove = static_cast<unsigned int>(0.5f * (1.0f - lowest) * numDirections);
    for (unsigned int n = 0; n < std::max(numAbove, numDirections / 2); ++n) {  // from above to below
        for (unsigned int j = 0; j < numOutputs; ++j) {
            double gain = 0.0;
            for (unsigned int i = 0; i < numInputs; ++i) gain += encodings[n][i] * matrix[i][j];
            power += gain * gain / std::max(numAbove, numDirections / 2);
        }
    }
    for (unsigned int j = 0; j < numOutputs; ++j) {
        for (unsigned int i = 0; i < numInputs; ++i) {
            if (power > 0.0) matrix[i][j] /= std::sqrt(power);
            mixer.SetGain(i, j, static_cast<float>(matrix[i][j]));
        }
    }
}

void AllRadDecoder::Process(float** outputs, float** inputs, unsigned long numSamples, short const* /*activeInputs*/) {
    mixer.Process(outputs, inputs, numSamples, orvandsp::allActiveInputs);
}

void AllRadDecoder::SetSamplerate(float newSamplerate) {
    samplerate = newSamplerate;
    mixer.SetSamplerate(newSamplerate);
}

}  // namespace Lume
