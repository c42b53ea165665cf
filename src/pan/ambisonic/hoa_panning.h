#pragma once

#include <vector>

#include "harmonics/spherical_harmonics.h"
#include "pan/amplitude_panning.h"

namespace Lume {

/// Frame of the panners that encode sources into ambisonic channels of any order: one output per harmonic, as many
/// orders as the number of outputs allows. Distance makes no difference, and loudspeakers aren't known here.
///
/// The azimuth is the mathematical one: 0 on +x, to the listener's right, counter-clockwise.
class HOAPanning : public AmplitudePanning {
public:
    /// How the channels are scaled; see SphericalHarmonicsNormalization.
    enum HOAEncodingConvention : int { SN3D = 0, N3D = 1, SN2D = 4, N2D = 5 };

    struct HOAPannerInfos {
        unsigned int order = 0;
        HOAEncodingConvention encodingConvention = SN3D;
        SphericalHarmonicsSorting sorting = IncreasingDegrees;
    };

    /// Stores the convention as far as the panner's dimension has it, and places every source again.
    virtual void SetEncodingConvention(HOAEncodingConvention convention) = 0;
    /// By one of the names of GetHOAPannerConvention.
    void SetEncodingConvention(char const* name) { SetEncodingConvention(GetHOAPannerConvention(name)); }
    HOAEncodingConvention GetEncodingConvention() const noexcept { return infos.encodingConvention; }

    /// Stores the order of the channels and places every source again.
    void SetSphericalHarmonicsSorting(SphericalHarmonicsSorting sorting);
    void SetSphericalHarmonicsSorting(char const* name);
    SphericalHarmonicsSorting GetSphericalHarmonicsSorting() const noexcept { return infos.sorting; }

    void GetPannerInfos(HOAPannerInfos& result) const { result = infos; }

    /// "SN3D", "N3D", "SN2D", "N2D"; empty for any other value.
    static char const* GetHOAPannerConventionName(HOAEncodingConvention convention) {
        return GetAmbisonicConventionName(convention);
    }
    /// Those names, "FullNormalization3D" and the like; SN3D for an unknown one.
    static HOAEncodingConvention GetHOAPannerConvention(char const* name);
    /// As the free functions of these names.
    static char const* GetSphericalHarmonicsSortingName(SphericalHarmonicsSorting sorting) {
        return Lume::GetSphericalHarmonicsSortingName(sorting);
    }
    static SphericalHarmonicsSorting GetSphericalHarmonicsSorting(char const* name) {
        return Lume::GetSphericalHarmonicsSorting(name);
    }

protected:
    /// @param harmonics  which channels there are, in some sorting
    HOAPanning(unsigned int numInputs, unsigned int numOutputs, unsigned int order, HOAEncodingConvention convention,
               std::vector<HarmonicIndex> (*harmonics)(unsigned int order, SphericalHarmonicsSorting sorting));

    /// Encodes a position into the gains of one source. Real-time safe.
    void Encode(CartesianVector const& position, SphericalHarmonicsNormalization normalization, float* gains) const;

    HOAPannerInfos infos;

private:
    std::vector<HarmonicIndex> (*harmonics)(unsigned int order, SphericalHarmonicsSorting sorting);
    std::vector<HarmonicIndex> channels;  // empty for a sorting that is none
};

}  // namespace Lume
