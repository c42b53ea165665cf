#pragma once

#include <string>
#include <vector>

#include "hrtf/filter_set.h"
#include "hrtf/hrtf_point.h"
#include "hrtf/nearest_point_search.h"

namespace Lume {

/// A set of filters by direction: a description and its points.
class HrtfData : public FilterSet {
public:
    /// Loads an SDIF file of one HRTF frame per direction.
    void LoadFromHRTF(std::string const& fileName);

    /// @param index  below GetNumPoints()
    HrtfPoint const& GetHrtfPoint(unsigned int index) const { return points[index]; }

    /// The point whose position is nearest, of equally near ones the first; a default point if the set is empty. The
    /// distance is that between the positions, not the angle.
    HrtfPoint const& GetNearestHrtfPoint(CartesianVector const& position) const;

protected:
    void SetPoints(std::vector<HrtfPoint> newPoints);

    std::vector<HrtfPoint> points;  // set by SetPoints alone

private:
    NearestPointSearch nearest;
};

}  // namespace Lume
