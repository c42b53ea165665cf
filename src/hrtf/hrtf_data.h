#pragma once

#include <string>
#include <vector>

#include "hrtf/hrtf_header_infos.h"
#include "hrtf/hrtf_point.h"

namespace Lume {

/// A set of filters by direction: a description and its points.
///
/// Loading reports failures as orvandsp::OrvanDspException and then leaves the set as it was. Control side only.
class HrtfData {
public:
    virtual ~HrtfData() = default;

    /// Loads the set that a name stands for.
    virtual void LoadFromFile(std::string const& fileName) = 0;

    /// Loads an SDIF file of one HRTF frame per direction.
    void LoadFromHRTF(std::string const& fileName);

    unsigned int GetNumCoefficients() const noexcept { return header.numCoefficients; }
    unsigned int GetNumChannels() const noexcept { return header.numChannels; }
    unsigned int GetSamplingRate() const noexcept { return header.samplingRate; }  ///< [Hz]
    unsigned int GetNumPoints() const noexcept { return header.numPoints; }
    FlagItdExtracted GetFlagItdExtracted() const noexcept { return header.flagItdExtracted; }
    FlagDataIterpolated GetFlagInterp() const noexcept { return header.flagInterp; }
    HrtfHeaderInfos const& GetHrtfHeaderInfos() const noexcept { return header; }

    /// @param index  below GetNumPoints()
    HrtfPoint const& GetHrtfPoint(unsigned int index) const { return points[index]; }

    /// The point whose position is nearest, of equally near ones the first; a default point if the set is empty. The
    /// distance is that between the positions, not the angle.
    HrtfPoint const& GetNearestHrtfPoint(CartesianVector const& position) const;

protected:
    std::vector<HrtfPoint> points;
    HrtfHeaderInfos header;
};

}  // namespace Lume
