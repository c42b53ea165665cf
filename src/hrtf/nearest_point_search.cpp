#include "hrtf/nearest_point_search.h"

#include <algorithm>
#include <limits>
#include <numeric>

#include "kernels/kernels.h"

namespace Lume {

namespace {

/// So many points are compared in about the time that choosing between two boxes takes.
constexpr std::size_t pointsPerBox = 200;
constexpr float CartesianVector::*axes[] = {&CartesianVector::x, &CartesianVector::y, &CartesianVector::z};

/// As in the kernel, so that both round alike.
float Squared(float dx, float dy, float dz) {
    return dx * dx + dy * dy + dz * dz;
}

/// Zero times what isn't finite is not a number.
bool IsFinite(CartesianVector const& v) {
    return Squared(0.0f * v.x, 0.0f * v.y, 0.0f * v.z) == 0.0f;
}

}  // namespace

void NearestPointSearch::SetPoints(std::span<CartesianVector const> points) {
    boxes.clear();
    order.resize(points.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::vector<std::size_t> aside(points.size());
    Enclose(points, 0, points.size(), aside.data());
    coordinates.resize(3 * points.size());
    float* coordinate = coordinates.data();
    for (const auto axis : axes)
        for (const std::size_t index : order) *coordinate++ = points[index].*axis;
}

void NearestPointSearch::Enclose(std::span<CartesianVector const> points, std::size_t begin, std::size_t end,
                                 std::size_t* aside) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    Box box{{infinity, infinity, infinity}, {-infinity, -infinity, -infinity}, begin, end};
    auto& widest = box.axis;
    for (const auto axis : axes) {
        for (std::size_t place = begin; place < end; ++place) {
            box.least.*axis = std::min(box.least.*axis, points[order[place]].*axis);
            box.most.*axis = std::max(box.most.*axis, points[order[place]].*axis);
        }
        if (box.most.*axis - box.least.*axis > box.most.*widest - box.least.*widest) widest = axis;
    }
    box.middle = box.least.*widest + 0.5f * (box.most.*widest - box.least.*widest);
    const std::size_t self = boxes.size();
    boxes.push_back(box);
    if (end - begin <= pointsPerBox) return;

    std::size_t numLower = 0, numUpper = 0;
    for (std::size_t place = begin; place < end; ++place)
        if (points[order[place]].*widest < box.middle)
            order[begin + numLower++] = order[place];
        else
            aside[numUpper++] = order[place];
    const std::size_t border = begin + numLower;
    std::copy_n(aside, numUpper, &order[border]);
    // Points that all stand in one place, or nowhere, can't be told apart.
    if (numLower == 0 || numUpper == 0) return;
    Enclose(points, begin, border, aside);
    boxes[self].upper = boxes.size();
    Enclose(points, border, end, aside);
}

std::size_t NearestPointSearch::Find(CartesianVector const& position) const noexcept {
    if (!IsFinite(position)) return 0;
    Found found{std::numeric_limits<float>::infinity(), order.size()};
    Find(0, position, found);
    return found.index;
}

void NearestPointSearch::Find(std::size_t place, CartesianVector const& position, Found& found) const {
    Box const& box = boxes[place];
    float least = 0.0f;
    for (const auto axis : axes) {
        const float outside = std::max({box.least.*axis - position.*axis, position.*axis - box.most.*axis, 0.0f});
        least += outside * outside;
    }
    // An equally near point may be an earlier one.
    if (least > found.squared) return;
    if (box.upper != 0) {
        // The half that is more likely to have it first.
        const bool isBelow = position.*box.axis < box.middle;
        Find(isBelow ? place + 1 : box.upper, position, found);
        Find(isBelow ? box.upper : place + 1, position, found);
        return;
    }
    const std::size_t total = order.size();
    float const* const x = coordinates.data() + box.begin;
    float const* const y = x + total;
    float const* const z = y + total;
    const std::size_t nearest =
        orvandsp::kernels::Get().nearest(x, y, z, box.end - box.begin, position.x, position.y, position.z);
    const float squared = Squared(x[nearest] - position.x, y[nearest] - position.y, z[nearest] - position.z);
    const std::size_t index = order[box.begin + nearest];
    if (found.squared < squared || (found.squared == squared && found.index < index)) return;
    found = {squared, index};
}

}  // namespace Lume
