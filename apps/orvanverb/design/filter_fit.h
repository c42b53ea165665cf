#pragma once

#include <cstddef>
#include <vector>

#include "math/real_transform.h"

namespace program {

/// What some filters are to do together: signals that are the sums of all filters, each behind a way of its own, are to
/// be as wanted.
struct FilterWish {
    std::vector<std::vector<orvandsp::Spectrum>> ways;  // of each signal, one per filter
    std::vector<orvandsp::Spectrum> wanted;             // one per signal
    std::vector<std::vector<double>> weights;           // of the squared error; one per signal, a value per bin
    double effort = 0.0;                                // weight of the squared filters, the same for all bins
};

/// The impulse responses of a length with the least weighted squared error: the normal equations, whose matrix is made
/// of convolutions, by conjugate gradients (Hestenes and Stiefel, "Methods of conjugate gradients for solving linear
/// systems", J. Res. Natl. Bur. Stand. 49, 1952). What an inverse needs ahead of time, or beyond the length, is thus
/// not cut off: the rest makes the best of it.
/// @param length  samples; together with the ways' responses at most the transform's size
/// @return one response per filter
std::vector<std::vector<double>> FitFilters(orvandsp::RealTransform const& transform, FilterWish const& wish,
                                            std::size_t length);

}  // namespace program
