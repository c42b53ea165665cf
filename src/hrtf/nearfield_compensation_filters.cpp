#include "hrtf/nearfield_compensation_filters.h"

#include <algorithm>

#include "dsp/orvan_dsp_exception.h"
#include "hrtf/coll_file.h"

namespace Lume {

NearfieldCompensationFilters::NearfieldCompensationFilters(std::string const& fileName) {
    header.hrtfType = hrtfNearfieldCompensationFilter;
    header.filterType = hrtfBiquadCells;
    NearfieldCompensationFilters::LoadFromFile(fileName);
}

void NearfieldCompensationFilters::LoadFromFile(std::string const& fileName) {
    if (CheckFileExtension(fileName, ".near"))
        LoadFromNear(fileName);
    else if (!fileName.empty())
        throw orvandsp::OrvanDspException("invalid file extension " + fileName, __FILE__, __LINE__);
}

float NearfieldCompensationFilters::GetMaxDistance() const {
    float greatest = 0.0f;
    for (HrtfPoint const& point : points) greatest = std::max(greatest, point.position.radius());
    return greatest;
}

}  // namespace Lume
