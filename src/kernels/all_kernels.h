#pragma once

#include "kernels/kernels.h"
#include "kernels/lanes.h"

namespace orvandsp::kernels {

// Half the width does few jobs as fast, or faster: fewer samples are moved in and out of lanes that are idle.
#if ORVAN_KERNEL_LANES == 16
extern const Kernels kernels8;
#elif ORVAN_KERNEL_LANES == 8
extern const Kernels kernels4;
#endif

namespace {

#if ORVAN_KERNEL_LANES == 16
constexpr Kernels const* narrower = &kernels8;
#elif ORVAN_KERNEL_LANES == 8
constexpr Kernels const* narrower = &kernels4;
#else
constexpr Kernels const* narrower = nullptr;
#endif
inline bool FitsNarrower(std::size_t numJobs) noexcept {
    return numLanes > 4 && numJobs <= numLanes / 2;
}

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
                                .glides = Glides,
                                .cascades = Cascades,
                                .gainRamps = GainRamps,
                                .mix = Mix,
                                .hadamard = Hadamard,
                                .feedback = Feedback,
                                .fade = Fade,
                                .scale = Scale,
                                .addScaled = AddScaled,
                                .nearest = Nearest};

}  // namespace
}  // namespace orvandsp::kernels
