#include "orvanverb/design/ear_ring.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "math/real_transform.h"
#include "orvanverb/design/sphere.h"

namespace program {

namespace {

constexpr double degree = std::numbers::pi / 180.0;

/// The samples by which b comes later than a: the peak of their cross-correlation below 8 kHz, between samples by a
/// parabola. Above, pinnae shape the responses, and the peaks of neighbouring periods are hard to tell apart.
double Lag(orvandsp::RealTransform const& transform, orvandsp::Spectrum const& a, orvandsp::Spectrum const& b,
           double samplerate) {
    constexpr double highHz = 8000.0;
    orvandsp::Spectrum cross(a.size());
    for (std::size_t k = 0; k < a.size() && transform.FrequencyOf(k, samplerate) < highHz; ++k)
        cross[k] = b[k] * std::conj(a[k]);
    const std::vector<double> correlation = transform.Inverse(cross);
    const auto peak =
        static_cast<std::size_t>(std::max_element(correlation.begin(), correlation.end()) - correlation.begin());
    const std::size_t size = correlation.size();
    const double before = correlation[(peak + size - 1) % size], after = correlation[(peak + 1) % size];
    const double bend = before - 2.0 * correlation[peak] + after;
    const double whole = static_cast<double>(peak) - (peak > size / 2 ? static_cast<double>(size) : 0.0);
    return bend < 0.0 ? whole + 0.5 * (before - after) / bend : whole;
}

}  // namespace

bool EarRing::IsAtEarHeight(Lume::CartesianVector const& position) {
    constexpr double widestDeg = 3.0;
    return std::abs(std::asin(static_cast<double>(Unit(position).z))) <= widestDeg * degree;
}

EarRing::EarRing(Lume::SdifSet const& set) : samplerate(set.header.samplingRate) {
    constexpr double sameDeg = 0.1;
    for (Lume::SdifSetPoint const& point : set.points) {
        Lume::CartesianVector const& p = point.positions.at(0);
        if (!IsAtEarHeight(p)) continue;
        const auto middle = point.coefficients.begin() + set.header.numCoefficients;
        places.push_back({std::atan2(static_cast<double>(p.x), static_cast<double>(p.y)) / degree,
                          static_cast<double>(Length(p)),
                          {std::vector<double>(point.coefficients.begin(), middle),
                           std::vector<double>(middle, point.coefficients.end())}});
    }
    const auto direction = [](Place const& place) { return std::lround(place.azimuthDeg / sameDeg); };
    std::stable_sort(places.begin(), places.end(), [&](Place const& a, Place const& b) {
        return direction(a) != direction(b) ? direction(a) < direction(b) : a.distance > b.distance;
    });
    const auto last = std::unique(places.begin(), places.end(),
                                  [&](Place const& a, Place const& b) { return direction(a) == direction(b); });
    places.erase(last, places.end());
}

EarRing::Neighbours EarRing::FindNeighbours(double azimuthDeg) const {
    constexpr double widestDeg = 15.5;  // rings of 24 are common
    constexpr double sameDeg = 0.05;
    if (places.empty()) return {};
    const auto above = std::upper_bound(places.begin(), places.end(), azimuthDeg + sameDeg,
                                        [](double azimuth, Place const& place) { return azimuth < place.azimuthDeg; });
    Place const& before = above == places.begin() ? places.back() : *(above - 1);
    Place const& after = above == places.end() ? places.front() : *above;
    const auto wrapped = [](double degrees) { return degrees - 360.0 * std::floor(degrees / 360.0); };
    const double gap = wrapped(after.azimuthDeg - before.azimuthDeg);
    const double way = wrapped(azimuthDeg + sameDeg - before.azimuthDeg) - sameDeg;
    if (way <= sameDeg) return {&before, &before, 0.0};
    if (gap > widestDeg || gap == 0.0) return {};
    return {&before, &after, way / gap};
}

bool EarRing::Covers(double azimuthDeg) const {
    return FindNeighbours(azimuthDeg).before != nullptr;
}

EarRing::Ears EarRing::At(double azimuthDeg) const {
    const Neighbours neighbours = FindNeighbours(azimuthDeg);
    if (neighbours.before == neighbours.after) return neighbours.before->ears;
    const std::size_t length = neighbours.before->ears[0].size();
    const orvandsp::RealTransform transform(std::bit_ceil(2 * length));
    const double part = neighbours.part;
    Ears ears;
    for (std::size_t ear = 0; ear < 2; ++ear) {
        const orvandsp::Spectrum before = transform.Forward(neighbours.before->ears[ear]);
        const orvandsp::Spectrum after = transform.Forward(neighbours.after->ears[ear]);
        const double lag = Lag(transform, before, after, samplerate);
        orvandsp::Spectrum mixed = transform.Delayed(before, part * lag);
        const orvandsp::Spectrum other = transform.Delayed(after, (part - 1.0) * lag);
        for (std::size_t k = 0; k < mixed.size(); ++k) mixed[k] += part * (other[k] - mixed[k]);
        ears[ear] = transform.Inverse(mixed);
        ears[ear].resize(length);
    }
    return ears;
}

}  // namespace program
