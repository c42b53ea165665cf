#pragma once

#include <span>
#include <vector>

#include "orvanverb/design/erb_axis.h"
#include "orvanverb/design/section_cascade.h"

namespace program {

/// Fits cascades of six sections to levels on an axis.
///
/// Levenberg-Marquardt on the decibels of the ERB-smoothed power, with a light term on the unsmoothed decibels that
/// keeps peaks from growing where the smoothing doesn't look. No method without such a refinement comes close.
class CascadeFit {
public:
    CascadeFit(ErbAxis const& axis, double samplerate);

    /// A first cascade by Prony's method on a bilinearly warped axis (Oppenheim and Johnson, "Discrete representation
    /// of signals", Proc. IEEE 60, 1972), which spends the order where the ear resolves.
    /// @param level  wanted [dB], one per point of the axis
    SectionCascade Start(std::vector<double> const& level) const;

    /// A first cascade from one for another rate: its poles and zeros keep their frequencies and bandwidths (matched
    /// z).
    /// @param sections  a gain and four coefficients for each of six stages
    SectionCascade StartFrom(std::span<float const> sections, double sectionsRate,
                             std::vector<double> const& level) const;

    struct Result {
        SectionCascade cascade;
        double errorDb = 0.0;  // RMS over the bands, the light term included
    };
    /// Refines a cascade for at most so many steps.
    Result Refine(SectionCascade const& start, std::vector<double> const& level, int steps) const;

private:
    /// The same with the gain that levels it best.
    SectionCascade Levelled(SectionCascade cascade, std::vector<double> const& level) const;

    ErbAxis const& axis;
    double samplerate;
    CascadeLevels levels;
    std::vector<double> fineWeights;  // of the points
};

}  // namespace program
