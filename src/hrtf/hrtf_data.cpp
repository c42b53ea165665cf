#include "hrtf/hrtf_data.h"

#include <utility>

#include "geometry/vector_algebra.h"
#include "hrtf/sdif_set.h"
#include "kernels/kernels.h"

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
    float const* const x = coordinates.data();
    float const* const y = x + points.size();
    float const* const z = y + points.size();
    return points[orvandsp::kernels::Get().nearest(x, y, z, points.size(), position.x, position.y, position.z)];
}

void HrtfData::SetPoints(std::vector<HrtfPoint> newPoints) {
    points = std::move(newPoints);
    coordinates.clear();
    for (float CartesianVector::*const axis : {&CartesianVector::x, &CartesianVector::y, &CartesianVector::z})
        for (HrtfPoint const& point : points) coordinates.push_back(point.position.*axis);
}

}  // namespace Lume
