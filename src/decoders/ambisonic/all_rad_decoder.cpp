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

/// Loudspeakers on the unit sphere, and behind them an imaginary one above or below where there is none.
std::vector<CartesianVector> Points(CartesianVector const* positions, unsigned int numSpeakers) {
    std::vector<CartesianVector> points;
    for (unsigned int j = 0; j < numSpeakers; ++j)
        points.push_back(positions[j] / std::max(positions[j].radius(), 1e-6f));
    for (const float z : {1.0f, -1.0f})
        if (std::none_of(points.begin(), points.begin() + numSpeakers,
                         [z](CartesianVector const& p) { return p.z * z > 0.5f; }))
            points.push_back({0.0f, 0.0f, z});
    return points;
}

/// Directions evenly all around, from above to below.
std::vector<CartesianVector> EvenDirections() {
    constexpr unsigned int numDirections = 2500;  // many more than channels: the sums are right within a percent
    constexpr double goldenAngle = 2.39996322972865332;
    std::vector<CartesianVector> directions;
    for (unsigned int n = 0; n < numDirections; ++n) {
        const double z = 1.0 - (2.0 * n + 1.0) / numDirections, radius = std::sqrt(1.0 - z * z);
        directions.push_back({static_cast<float>(radius * std::cos(goldenAngle * n)),
                              static_cast<float>(radius * std::sin(goldenAngle * n)), static_cast<float>(z)});
    }
    return directions;
}

/// What a wave becomes in a column of a decoding matrix.
double SignalOf(std::vector<double> const& wave, orvandsp::MatrixDouble const& matrix, std::size_t column) {
    double signal = 0.0;
    for (unsigned int i = 0; i < matrix.GetNumRows(); ++i) signal += wave[i] * matrix[i][column];
    return signal;
}

/// The power of a wave in all loudspeakers.
double PowerOf(std::vector<double> const& wave, orvandsp::MatrixDouble const& matrix) {
    double power = 0.0;
    for (unsigned int j = 0; j < matrix.GetNumColumns(); ++j) power += std::pow(SignalOf(wave, matrix, j), 2);
    return power;
}

/// What part of an imaginary loudspeaker's signal each of its neighbours plays, so that a wave from there has a power.
/// In full the signal would outweigh all others: below a dome it is that of half the sphere.
/// @param shares  channels x loudspeakers, behind them imaginary ones
double PartFor(double power, std::vector<double> const& wave, orvandsp::MatrixDouble const& shares,
               std::size_t imaginary, std::set<std::size_t> const& neighbours) {
    const double signal = SignalOf(wave, shares, imaginary);
    // The power is a quadratic of the part: constant + 2 linear part + square part^2.
    const double square = static_cast<double>(neighbours.size()) * signal * signal;
    double constant = 0.0, linear = 0.0;
    for (std::size_t j = 0; j < shares.GetNumColumns(); ++j) {
        if (j == imaginary) continue;
        const double own = SignalOf(wave, shares, j);
        constant += own * own;
        if (neighbours.contains(j)) linear += own * signal;
    }
    if (square <= 0.0 || constant >= power) return 0.0;
    return (std::sqrt(linear * linear + square * (power - constant)) - linear) / square;
}

}  // namespace

AllRadDecoder::AllRadDecoder(unsigned int numChannels, unsigned int numberOfOutputs)
    : mixer(numChannels, numberOfOutputs), matrix(numChannels, numberOfOutputs, 0.0) {
    initDecoder(numChannels, numberOfOutputs);
}

void AllRadDecoder::SetLoudspeakerPositions(CartesianVector const* positions) {
    const std::vector<CartesianVector> points = Points(positions, numOutputs), directions = EvenDirections();
    const std::vector<Triangle> triangles = HullTriangles(points);
    const auto order = static_cast<unsigned int>(std::lround(std::sqrt(static_cast<double>(numInputs)))) - 1;
    std::vector<double> weights;
    AmbisonicMaxReOptimizedGains(order, weights);
    const auto encode = [=](CartesianVector const& direction) {
        return AmbisonicEncodingVector(order, direction, SchmidtSeminormalized3D, IncreasingDegrees);
    };
    std::vector<std::vector<double>> waves;
    orvandsp::MatrixDouble shares(numInputs, static_cast<unsigned int>(points.size()), 0.0);
    for (CartesianVector const& direction : directions) {
        waves.push_back(encode(direction));
        const Share share = SharesOf(direction, points, triangles);
        for (unsigned int i = 0; i < numInputs; ++i) {
            const double degree = std::floor(std::sqrt(i + 0.5));
            const double signal =
                waves.back()[i] * (2.0 * degree + 1.0) * weights[i] / static_cast<double>(directions.size());
            for (unsigned int corner = 0; corner < 3; ++corner)
                shares[i][share.triangle[corner]] += signal * share.gains[corner];
        }
    }

    std::vector<std::set<std::size_t>> neighbours(points.size() - numOutputs);  // of the imaginary loudspeakers
    for (Triangle const& t : triangles)
        for (const std::size_t corner : t)
            for (const std::size_t other : t)
                if (corner >= numOutputs && other < numOutputs) neighbours[corner - numOutputs].insert(other);
    float lowest = 1.0f;
    for (unsigned int j = 0; j < numOutputs; ++j) lowest = std::min(lowest, points[j].z);
    const auto numAbove =  // of the directions, that are no lower than the loudspeakers
        std::max(static_cast<std::size_t>(0.5f * (1.0f - lowest) * static_cast<float>(waves.size())), waves.size() / 2);
    std::vector<double> parts(neighbours.size(), 0.0);
    double power = 0.0;
    constexpr int numSteps = 6;  // mean power and parts follow each other
    for (int step = 0;; ++step) {
        for (unsigned int i = 0; i < numInputs; ++i) {
            std::copy_n(shares[i].begin(), numOutputs, matrix[i].begin());
            for (std::size_t k = 0; k < parts.size(); ++k)
                for (const std::size_t j : neighbours[k]) matrix[i][j] += parts[k] * shares[i][numOutputs + k];
        }
        power = 0.0;
        for (std::size_t n = 0; n < numAbove; ++n) power += PowerOf(waves[n], matrix) / static_cast<double>(numAbove);
        if (step == numSteps) break;
        for (std::size_t k = 0; k < parts.size(); ++k)
            parts[k] = PartFor(power, encode(points[numOutputs + k]), shares, numOutputs + k, neighbours[k]);
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
