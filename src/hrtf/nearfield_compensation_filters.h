#pragma once

#include <string>

#include "hrtf/hrtf_data.h"

namespace Lume {

/// A set whose filters turn those of far sources into those of near ones.
class NearfieldCompensationFilters : public HrtfData {
public:
    /// @param fileName  an SDIF file whose name contains ".near", or empty for an empty set
    /// @throws orvandsp::OrvanDspException if it can't be loaded
    explicit NearfieldCompensationFilters(std::string const& fileName);

    /// As the constructor; an empty name leaves the set as it is.
    void LoadFromFile(std::string const& fileName) override;
    void LoadFromNear(std::string const& fileName) { LoadFromHRTF(fileName); }

    /// The greatest distance of a point from the centre [m], 0 without points.
    float GetMaxDistance() const;
};

}  // namespace Lume
