#pragma once

#include <vector>

#include "pan/amplitude_panning.h"
#include "pan/null_panning.h"

namespace Lume {

/// Pairwise vector-base amplitude panning on a ring of loudspeakers, after Pulkki, "Virtual sound source positioning
/// using vector base amplitude panning", J. Audio Eng. Soc. 45(6), 1997.
///
/// The source is projected on the horizontal plane; the two loudspeakers on either side of its azimuth share it, so
/// that their position vectors, weighted by the gains, point at it, with constant power. Heights and the source's
/// distance make no difference; the loudspeakers' distances do. A source in a gap of more than 180 degrees can be
/// silent.
class Vbap2DPanning : public AmplitudePanning {
public:
    struct Point2D {
        float x = 0.0f;
        float y = 0.0f;
        float azimuth = 0.0f;    // the listener's [degrees], in [-180, 180)
        unsigned int index = 0;  // the loudspeaker's output channel
    };

    /// Lays a provisional ring over a single radian, on the right; no source is placed yet.
    Vbap2DPanning(unsigned int numInputs, unsigned int numOutputs);

    /// A NullPanning below two outputs.
    static Pan* Create(unsigned int requestedInputs, unsigned int requestedOutputs) {
        return CreateIf<Vbap2DPanning>(requestedOutputs >= 2, requestedInputs, requestedOutputs);
    }

    /// Loudspeakers may come in any order.
    void SetLoudspeakerPositions(CartesianVector const* positions) override;
    void convert(CartesianVector const& position, float* gains, unsigned int sourceIndex) override;

    /// The pair that holds a source: the first whose azimuths enclose the source's, both included, or the last, which
    /// closes the ring.
    unsigned int find_pair(float x, float y) const;
    /// The pair that gives a source the largest of the smaller gains, the later one of equals. An alternative to
    /// find_pair that doesn't need sorted loudspeakers.
    unsigned int find_pair_old(float x, float y) const;

    /// Sort order of loudspeakers: the listener's azimuth.
    static bool AscendingAzimuthSort(Point2D const& a, Point2D const& b);

private:
    struct Pair {
        float x1 = 0.0f, y1 = 0.0f, x2 = 0.0f, y2 = 0.0f;
    };
    struct Gains {
        float first, second;
    };
    static Gains Solve(Pair const& pair, float x, float y);
    static Gains ShareInLine(Pair const& pair, float x, float y);
    void FillPairs();

    std::vector<Point2D> speakers;  // by ascending azimuth
    std::vector<Pair> pairs;        // entry k holds speakers k and k + 1, the last entry the last and the first
};

}  // namespace Lume
