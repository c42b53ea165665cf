#include "hrtf/hrtf_data.h"

#include <algorithm>
#include <utility>

#include "geometry/vector_algebra.h"
#include "hrtf/sdif_set.h"

namespace Lume {

void HrtfData::LoadFromHRTF(std::string const& fileName) {
    SdifSet set = ReadSdifSet(fileName, 1);
    std::vector<HrtfPoint> newPoints(set.points.size());
    for (std::size_t i = 0; i < newPoints.size(); ++i) {
        HrtfPoint& point = newPoints[i];
        if (!set.points[i].positions.empty()) point.position = set.points[i].positions[0];
        point.itd = set.points[i].itd;
        point.numCoefficients = set.header.numCoefficients;
        point.numChannels = set.header.numChannels;
        point.coefficients = std::move(set.points[i].coefficients);
        point.index = static_cast<unsigned int>(i);
    }
    SetPoints(std::move(newPoints));
    header = std::move(set.header);
}

HrtfPoint const& HrtfData::GetNearestHrtfPoint(CartesianVector const& position) const {
    static const HrtfPoint defaultPoint;
    if (points.empty()) return defaultPoint;
    return points[nearest.Find(position)];
}

void HrtfData::SetPoints(std::vector<HrtfPoint> newPoints) {
    points = std::move(newPoints);
    std::vector<CartesianVector> positions(points.size());
    std::transform(points.begin(), points.end(), positions.begin(),
                   [](HrtfPoint const& point) { return point.position; });
    nearest.SetPoints(positions);
}

}  // namespace Lume
