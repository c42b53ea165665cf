#include "hrtf/transaural_data.h"

namespace Lume {

namespace {

float SquaredDistance(CartesianVector const& a, CartesianVector const& b) {
    const float dx = a.x - b.x;
    const float dy = a.y - b.y;
    const float dz = a.z - b.z;
    return dx * dx + dy * dy + dz * dz;
}

}  // namespace

TransauralPoint const& TransauralData::GetNearestTransauralPoint(CartesianVector const& left,
                                                                 CartesianVector const& right) const {
    static const TransauralPoint defaultPoint;
    if (points.empty()) return defaultPoint;
    const auto distance = [&](TransauralPoint const& point) {
        return SquaredDistance(point.leftPosition, left) + SquaredDistance(point.rightPosition, right);
    };
    TransauralPoint const* nearest = &points[0];
    float least = distance(points[0]);
    for (TransauralPoint const& point : points) {
        const float present = distance(point);
        if (present < least) {
            nearest = &point;
            least = present;
        }
    }
    return *nearest;
}

}  // namespace Lume
