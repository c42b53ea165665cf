#pragma once

#include <vector>

#include "pan/amplitude_panning.h"

namespace Lume {

/// Frame of distance-based amplitude panning: every loudspeaker gets a gain that falls with its distance to the source,
/// at constant power, so that no listener at a centre is assumed. After Lossius, Baltazar and de la Hogue, "DBAP:
/// distance-based amplitude panning", Proc. Int. Computer Music Conf., 2009.
///
/// Each source can be spread: over all directions (0 is a point, 1 the same gain everywhere), or along each axis.
class DbapPanning : public AmplitudePanning {
public:
    enum SpreadingMode : int { omni = 0, directional = 1 };
    static constexpr SpreadingMode DefaultSpreadingMode = omni;

    /// Starts with a regular ring of radius 1.
    DbapPanning(unsigned int numInputs, unsigned int numOutputs);

    void SetSpreadMode(SpreadingMode mode);
    /// An unknown name counts as "omni".
    void SetSpreadMode(char const* name) { SetSpreadMode(GetSpreadMode(name)); }
    SpreadingMode GetCurrentSpreadMode() const noexcept { return spreadMode; }
    /// "omni" or "directional"; the empty string for any other value.
    static char const* GetSpreadModeName(SpreadingMode mode);
    /// The mode of a name, or of the synonym "xyz" of "directional"; omni for an unknown name.
    static SpreadingMode GetSpreadMode(char const* name);

    /// Sets how wide a source is in the mode omni. @param percent  limited to 0 ... 100
    void SetOmniSpreadFactor(unsigned int source, float percent);
    void SetOmniSpreadFactor(float percent);
    /// Sets how wide a source is along x, y and z in the mode directional.
    /// @param percents  three numbers, each limited to 0 ... 100
    void SetDirectionalSpreadFactor(unsigned int source, float const* percents);
    void SetDirectionalSpreadFactor(float const* percents);

    /// Whether sources outside the loudspeakers are silent. How far out that is, a subclass says.
    void MuteSourceOutsideSpeakersHull(bool mute);

protected:
    /// Writes gains of power 1.
    /// @param centerDistanceSquared  of the position from the barycentre [m^2]: what the distance to every loudspeaker
    ///                               becomes for a source spread in all directions
    /// @param planar                 whether the mode omni leaves heights out of the distances
    void Distribute(CartesianVector const& position, float centerDistanceSquared, bool planar, float* gains,
                    unsigned int source) const;

    std::vector<CartesianVector> speakerPositions;
    CartesianVector barycenter;
    SpreadingMode spreadMode = DefaultSpreadingMode;
    std::vector<float> omniSpread;                   // per source, 0 ... 1
    std::vector<CartesianVector> directionalSpread;  // per source and axis, 0 ... 1
    bool muteOutsideHull = false;
};

}  // namespace Lume
