#pragma once

#include <array>
#include <span>

#include "dsp/constants.h"
#include "geometry/cartesian_vector.h"
#include "math/matrix.h"
#include "pan/diffuse/reverb_panning.h"

namespace Lume {

/// The share of the sphere that is nearest to each loudspeaker, 1 in all: what part of the waves that come from
/// everywhere it stands for. A layout of which nothing stands more than 10 degrees below the ears covers the upper half
/// of the sphere alone, or its lowest ring would stand for what comes from below, too.
///
/// Counted over 16384 directions, and so within 0.001 of the whole.
///
/// @param positions  at most MaxNumChannels
/// @return 0 behind the last of them
std::array<float, orvandsp::MaxNumChannels> SolidAngleShares(std::span<CartesianVector const> positions);

/// A diffuse field over loudspeakers in space whose power comes equally from every direction, however densely
/// loudspeakers stand there: each plays in proportion to the solid angle that it stands for.
class SolidAngleMixing : public ReverbPanning {
public:
    /// @param newMixing  from inputs of power 1 to outputs of power 1; rows are inputs
    explicit SolidAngleMixing(orvandsp::Matrix<float> newMixing);

    /// Until it is called all outputs are equally loud. Takes 1 ms for 24 loudspeakers. New gains slide.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;

private:
    void Mix(float const* shares);

    orvandsp::Matrix<float> mixing;
    orvandsp::Matrix<float> gains;
};

}  // namespace Lume
