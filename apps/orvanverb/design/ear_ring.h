#pragma once

#include <array>
#include <vector>

#include "hrtf/sdif_set.h"

namespace program {

/// What the ears hear of sources at their own height, all around: measured responses, and responses between them.
class EarRing {
public:
    using Ears = std::array<std::vector<double>, 2>;  // left, right

    /// @param set  impulse responses of two ears; of several distances in one direction the farthest counts
    explicit EarRing(Lume::SdifSet const& set);

    /// Whether a source belongs to the ring.
    static bool IsAtEarHeight(Lume::CartesianVector const& position);

    /// Whether there are measurements on both sides of a direction, near enough to stand for it.
    /// @param azimuthDeg  0 ahead, +90 right
    bool Covers(double azimuthDeg) const;

    /// The responses for a direction that is covered. Between two measurements each ear's responses are brought to the
    /// time at which it would hear the source, and mixed: without that the highs would cancel.
    Ears At(double azimuthDeg) const;

private:
    struct Place {
        double azimuthDeg, distance;
        Ears ears;
    };
    struct Neighbours {
        Place const* before = nullptr;
        Place const* after = nullptr;
        double part = 0.0;  // of the way from one to the other
    };
    Neighbours FindNeighbours(double azimuthDeg) const;

    std::vector<Place> places;  // by rising azimuth
    double samplerate;
};

}  // namespace program
