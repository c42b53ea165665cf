#include "hrtf/transaural_data.h"

#include "geometry/vector_algebra.h"

namespace Lume {

TransauralPoint const& TransauralData::GetNearestTransauralPoint(CartesianVector const& left,
                                                                 CartesianVector const& right) const {
    static const TransauralPoint defaultPoint;
    if (points.empty()) return defaultPoint;
    const auto distance = [&](TransauralPoint const& point) {
        return SquaredLength(point.leftPosition - left) + SquaredLength(point.rightPosition - right);
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
