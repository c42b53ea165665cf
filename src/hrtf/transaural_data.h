#pragma once

#include <vector>

#include "hrtf/filter_set.h"
#include "hrtf/transaural_point.h"

namespace Lume {

/// A set of filters by pair of loudspeakers, which need not stand symmetrically.
class TransauralData : public FilterSet {
public:
    /// @param index  below GetNumPoints()
    TransauralPoint const& GetTransauralPoint(unsigned int index) const { return points[index]; }

    /// The point whose two positions are nearest to these, by the sum of the squared distances; of equally near ones
    /// the first, and a default point if the set is empty.
    TransauralPoint const& GetNearestTransauralPoint(CartesianVector const& left, CartesianVector const& right) const;

protected:
    std::vector<TransauralPoint> points;
};

}  // namespace Lume
