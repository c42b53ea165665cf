#pragma once

#include "kernels/kernels.h"
#include "kernels/lanes.h"

namespace orvandsp::kernels {

// Half the width does few jobs as fast, or faster: fewer samples are moved in and out of lanes that are idle.
#if defined(ORVAN_NARROWER_KERNELS)
extern const Kernels ORVAN_NARROWER_KERNELS;
#endif

namespace {

#if defined(ORVAN_NARROWER_KERNELS)
constexpr Kernels const* narrower = &ORVAN_NARROWER_KERNELS;
inline bool FitsNarrower(std::size_t numJobs) noexcept {
    return numJobs <= numLanes / 2;
}
#else
constexpr Kernels const* narrower = nullptr;
inline bool FitsNarrower(std::size_t) noexcept {
    return false;
}
#endif

}  // namespace
}  // namespace orvandsp::kernels

#include "kernels/mixes.h"
#include "kernels/recursions.h"

namespace orvandsp::kernels {
namespace {

constexpr Kernels allKernels = {.numLanes = numLanes,
                                .shelves = Shelves,
                                .allpassHeads = AllpassHeads,
                                .lossyHeads = LossyHeads,
                                .lateMix = MixLate,
                                .glides = Glides,
                                .cascades = Cascades,
                                .ears = Ears,
                                .gainRamps = ComputeGainRamps,
                                .mix = MixTerms,
                                .hadamard = Hadamard,
                                .feedback = Feedback,
                                .fade = Fade,
                                .staysWithin = StaysWithin,
                                .scale = Scale,
                                .addScaled = AddScaled,
                                .nearest = Nearest};

}  // namespace
}  // namespace orvandsp::kernels
