#include "pan/amplitude/vbap_panning.h"

#include <algorithm>
#include <cmath>

#include "geometry/azimuth.h"
#include "geometry/spherical_vector.h"
#include "geometry/vector_algebra.h"

namespace Lume {

namespace {

/// Below this ratio of volume to length of its sides a triangle is as good as flat.
constexpr float minVolumePerLength = 0.01f;
/// How far arcs may miss each other, or end beside a crossing, and still count as meeting [rad].
constexpr float crossingTolerance = 0.01f;
/// How far outside a triangle a loudspeaker still counts as inside, as a coefficient.
constexpr float insideTolerance = -0.001f;
/// A gain below this counts as negative. It isn't scaled with the distance of the source.
constexpr float gainTolerance = -0.01f;

CartesianVector NormalisedCross(CartesianVector const& a, CartesianVector const& b) {
    const CartesianVector n = Cross(a, b);
    const float length = n.radius();
    return length > 0.0f ? n / length : n;
}

/// How useful a triangle is whose third corner is this one. @param length  of its three sides [rad]
float VolumePerLength(CartesianVector const& normal, CartesianVector const& corner, float length) {
    return length > 1e-5f ? std::abs(Dot(normal, corner)) / length : 0.0f;
}

/// Whether the ends of an arc lie so far on one side of a plane through the listener that no point of the plane counts
/// as being on the arc: with the tolerance such a point is at most 0.17 rad beside an arc of this length.
/// @param a, b  the heights of the ends above the plane, seen from distance 1
bool IsClear(float arc, float a, float b) {
    constexpr float shortest = 0.01f, longest = 2.4f, height = 0.2f;
    return arc > shortest && arc < longest && ((a > height && b > height) || (a < -height && b < -height));
}

/// Whether a point that lies at these angles from the ends of an arc is on the arc.
bool IsOnArc(float arc, float fromOneEnd, float fromOtherEnd) {
    return !(std::abs(arc - fromOneEnd - fromOtherEnd) > crossingTolerance);
}

}  // namespace

float angle(CartesianVector const& a, CartesianVector const& b) {
    const float lengthA = a.radius();
    const float lengthB = b.radius();
    if (lengthA != 0.0f && lengthB != 0.0f) return std::acos(std::clamp(Dot(a, b) / (lengthA * lengthB), -1.0f, 1.0f));
    if (lengthA != 0.0f) return std::atan2(a.y, a.x);
    if (lengthB != 0.0f) return std::atan2(b.y, b.x);
    return 0.0f;
}

void VbapPanning::Matrix3D::createInverseFrom(CartesianVector const& a, CartesianVector const& b,
                                              CartesianVector const& c) {
    const CartesianVector rows[3] = {Cross(b, c), Cross(c, a), Cross(a, b)};
    const float determinant = Dot(a, rows[0]);
    std::fill_n(elements, 9, 0.0f);
    if (determinant == 0.0f) return;
    const float scale = 1.0f / determinant;
    for (int i = 0; i < 3; ++i) {
        elements[3 * i] = rows[i].x * scale;
        elements[3 * i + 1] = rows[i].y * scale;
        elements[3 * i + 2] = rows[i].z * scale;
    }
}

void VbapPanning::Matrix3D::matrixProduct(CartesianVector& result, CartesianVector const& v) const {
    float product[3];
    matrixProduct(product, v);
    result = CartesianVector{product[0], product[1], product[2]};
}

void VbapPanning::Matrix3D::matrixProduct(float* result, CartesianVector const& v) const {
    for (int i = 0; i < 3; ++i)
        result[i] = elements[3 * i] * v.x + elements[3 * i + 1] * v.y + elements[3 * i + 2] * v.z;
}

VbapPanning::VbapPanning(unsigned int numberOfInputs, unsigned int numberOfOutputs)
    : AmplitudePanning(numberOfInputs, numberOfOutputs), speakers(numberOfOutputs) {
    sides.reserve(std::size_t{numOutputs} * numOutputs / 2);
    triplets.reserve(std::size_t{4} * numOutputs);
    constexpr float elevation = 0.7853982f;  // 45 degrees
    for (unsigned int i = 0; i < numOutputs; ++i) {
        const float degrees = static_cast<float>(i) * 360.0f / static_cast<float>(numOutputs);
        const float azimuth = SwapAzimuthConvention(degrees) * DegreesToRadians;
        speakers[i].position = SphericalVector{azimuth, 1.0f, i % 2 == 0 ? elevation : -elevation};
        speakers[i].index = i;
    }
}

void VbapPanning::SetLoudspeakerPositions(CartesianVector const* positions) {
    speakers.resize(numOutputs);
    for (unsigned int i = 0; i < numOutputs; ++i) speakers[i] = {positions[i], i};
    needsComputing = true;
    compute();
    forceUpdate(false);
}

void VbapPanning::convert(CartesianVector const& position, float* gains, unsigned int /*sourceIndex*/) {
    if (needsComputing) compute();
    std::fill_n(gains, numOutputs, 0.0f);
    float tripletGains[3];
    unsigned int indices[3];
    find_triplet(position, tripletGains, indices);
    for (int i = 0; i < 3; ++i) {
        // The number of outputs may have been lowered since the loudspeakers were set.
        if (indices[i] < numOutputs) gains[indices[i]] = tripletGains[i];
    }
}

unsigned int VbapPanning::GetNumTriplets() {
    if (needsComputing) compute();
    return static_cast<unsigned int>(triplets.size());
}

void VbapPanning::GetTriplets(unsigned int* indices) {
    if (needsComputing) compute();
    for (Triplet const& triplet : triplets) {
        *indices++ = triplet.first;
        *indices++ = triplet.second;
        *indices++ = triplet.third;
    }
}

void VbapPanning::GetActiveTriplet(CartesianVector const& position, unsigned int* indices) {
    if (needsComputing) compute();
    float gains[3];
    find_triplet(position, gains, indices);
}

void VbapPanning::compute() {
    choose_triplets();
    for (Triplet& triplet : triplets) {
        triplet.matrix.createInverseFrom(speakers[triplet.first].position, speakers[triplet.second].position,
                                         speakers[triplet.third].position);
    }
    needsComputing = false;
}

void VbapPanning::choose_triplets() {
    const auto count = static_cast<unsigned int>(speakers.size());
    const auto at = [count](unsigned int i, unsigned int j) { return std::size_t{i} * count + j; };
    const auto position = [this](unsigned int i) -> CartesianVector const& { return speakers[i].position; };
    directions.resize(count);
    arcs.resize(std::size_t{count} * count);
    for (unsigned int i = 0; i < count; ++i) {
        // Those from whose positions no plane can be computed count as being in all planes.
        const float radius = position(i).radius();
        directions[i] = radius > 1e-6f && radius < 1e9f ? position(i) / radius : CartesianVector{};
        for (unsigned int j = 0; j < i; ++j)
            arcs[at(i, j)] = arcs[at(j, i)] = std::abs(angle(position(i), position(j)));
    }

    connections.assign(arcs.size(), 0);
    const auto connect = [&](unsigned int i, unsigned int j, char connected) {
        connections[at(i, j)] = connections[at(j, i)] = connected;
    };
    const auto isUseful = [&](CartesianVector const& normal, unsigned int i, unsigned int j, unsigned int k) {
        return VolumePerLength(normal, position(k), arcs[at(i, j)] + arcs[at(i, k)] + arcs[at(j, k)]) >
               minVolumePerLength;
    };
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int j = i + 1; j < count; ++j) {
            const CartesianVector normal = NormalisedCross(position(i), position(j));
            for (unsigned int k = j + 1; k < count; ++k) {
                if (!isUseful(normal, i, j, k)) continue;
                connect(i, j, 1);
                connect(i, k, 1);
                connect(j, k, 1);
            }
        }
    }

    sides.clear();
    for (unsigned int i = 0; i < count; ++i)
        for (unsigned int j = i + 1; j < count; ++j)
            if (connections[at(i, j)]) sides.push_back({arcs[at(i, j)], i, j});
    // Of equal lengths the later pair comes first. Which of two crossing diagonals of a square survives depends on it.
    std::sort(sides.begin(), sides.end(), [](Side const& a, Side const& b) {
        if (a.length != b.length) return a.length < b.length;
        return a.first != b.first ? a.first > b.first : a.second > b.second;
    });

    for (auto const& [length, first, second] : sides) {
        if (!connections[at(first, second)]) continue;
        const CartesianVector normal = NormalisedCross(position(first), position(second));
        for (unsigned int j = 0; j < count; ++j) {
            if (j == first || j == second) continue;
            const float height = Dot(normal, directions[j]);
            for (unsigned int k = j + 1; k < count; ++k) {
                if (k == first || k == second || !connections[at(j, k)]) continue;
                // Most arcs are far from one another, which is seen much sooner than where they would meet.
                if (IsClear(arcs[at(j, k)], height, Dot(normal, directions[k]))) continue;
                const CartesianVector other = NormalisedCross(position(j), position(k));
                if (IsClear(length, Dot(other, directions[first]), Dot(other, directions[second]))) continue;
                if (lines_intersect(first, second, j, k)) connect(j, k, 0);
            }
        }
    }

    triplets.clear();
    for (unsigned int i = 0; i < count; ++i) {
        for (unsigned int j = i + 1; j < count; ++j) {
            if (!connections[at(i, j)]) continue;
            const CartesianVector normal = NormalisedCross(position(i), position(j));
            for (unsigned int k = j + 1; k < count; ++k) {
                if (connections[at(i, k)] && connections[at(j, k)] && isUseful(normal, i, j, k) &&
                    !any_ls_inside_triplet(i, j, k))
                    triplets.push_back({{}, i, j, k});
            }
        }
    }
}

void VbapPanning::find_triplet(CartesianVector const& position, float* gains, unsigned int* indices) const {
    float bestSmallest = -100000.0f;
    int fewestNegatives = 3;
    std::fill_n(gains, 3, 0.0f);
    std::fill_n(indices, 3, 0u);
    for (Triplet const& triplet : triplets) {
        float candidate[3];
        triplet.matrix.matrixProduct(candidate, position);
        const auto negatives =
            static_cast<int>(std::count_if(candidate, candidate + 3, [](float gain) { return gain < gainTolerance; }));
        const float smallest = std::min({candidate[0], candidate[1], candidate[2]});
        if (!(smallest > bestSmallest) || negatives > fewestNegatives) continue;
        bestSmallest = smallest;
        fewestNegatives = negatives;
        std::copy_n(candidate, 3, gains);
        indices[0] = speakers[triplet.first].index;
        indices[1] = speakers[triplet.second].index;
        indices[2] = speakers[triplet.third].index;
    }
    for (int i = 0; i < 3; ++i) {
        if (gains[i] < gainTolerance) gains[i] = 0.0f;
    }
    const float norm = std::sqrt(gains[0] * gains[0] + gains[1] * gains[1] + gains[2] * gains[2]);
    if (norm > 0.0f) {
        for (int i = 0; i < 3; ++i) gains[i] /= norm;
    }
}

float VbapPanning::vol_p_side_lgth(unsigned int i, unsigned int j, unsigned int k) const {
    CartesianVector const& a = speakers[i].position;
    CartesianVector const& b = speakers[j].position;
    CartesianVector const& c = speakers[k].position;
    const float length = std::abs(angle(a, b)) + std::abs(angle(a, c)) + std::abs(angle(b, c));
    return VolumePerLength(NormalisedCross(a, b), c, length);
}

bool VbapPanning::lines_intersect(unsigned int i, unsigned int j, unsigned int k, unsigned int l) const {
    CartesianVector const& a = speakers[i].position;
    CartesianVector const& b = speakers[j].position;
    CartesianVector const& c = speakers[k].position;
    CartesianVector const& d = speakers[l].position;
    // The great circles of the two arcs meet in v and, opposite to it, in w.
    const CartesianVector v = NormalisedCross(NormalisedCross(a, b), NormalisedCross(c, d));
    const CartesianVector w = {-v.x, -v.y, -v.z};
    const float arc = angle(a, b), av = angle(a, v), bv = angle(b, v), aw = angle(a, w), bw = angle(b, w);
    const bool onV = IsOnArc(arc, av, bv), onW = IsOnArc(arc, aw, bw);
    if (!onV && !onW) return false;
    const float cv = angle(c, v), dv = angle(d, v), cw = angle(c, w), dw = angle(d, w);
    for (const float distance : {av, bv, cv, dv, aw, bw, cw, dw}) {
        if (!(std::abs(distance) > crossingTolerance)) return false;
    }
    const float otherArc = angle(c, d);
    return (onV && IsOnArc(otherArc, cv, dv)) || (onW && IsOnArc(otherArc, cw, dw));
}

bool VbapPanning::any_ls_inside_triplet(unsigned int a, unsigned int b, unsigned int c) const {
    Matrix3D inverse;
    inverse.createInverseFrom(speakers[a].position, speakers[b].position, speakers[c].position);
    for (unsigned int x = 0; x < speakers.size(); ++x) {
        if (x == a || x == b || x == c) continue;
        float coefficients[3];
        inverse.matrixProduct(coefficients, speakers[x].position);
        if (std::all_of(coefficients, coefficients + 3, [](float value) { return value >= insideTolerance; }))
            return true;
    }
    return false;
}

}  // namespace Lume
