#pragma once

#include <string>

#include "hrtf/hrtf_header_infos.h"

namespace Lume {

/// What all sets of filters have in common: a description. Control side only.
class FilterSet {
public:
    virtual ~FilterSet() = default;

    /// Loads the set that a name stands for.
    /// @throws orvandsp::OrvanDspException if it can't be loaded; the set stays as it was
    virtual void LoadFromFile(std::string const& fileName) = 0;

    unsigned int GetNumCoefficients() const noexcept { return header.numCoefficients; }
    unsigned int GetNumChannels() const noexcept { return header.numChannels; }
    unsigned int GetSamplingRate() const noexcept { return header.samplingRate; }  ///< [Hz]
    unsigned int GetNumPoints() const noexcept { return header.numPoints; }
    FlagItdExtracted GetFlagItdExtracted() const noexcept { return header.flagItdExtracted; }
    FlagDataIterpolated GetFlagInterp() const noexcept { return header.flagInterpolated; }
    HrtfHeaderInfos const& GetHrtfHeaderInfos() const noexcept { return header; }

protected:
    HrtfHeaderInfos header;
};

}  // namespace Lume
