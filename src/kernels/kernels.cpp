#include "kernels/kernels.h"

#include <cstdlib>
#include <initializer_list>

namespace orvandsp::kernels {

extern const Kernels kernels4;
#if defined(ORVAN_WIDE_KERNELS)
extern const Kernels kernels8;
extern const Kernels kernels16;
#endif

Kernels const* OfWidth(std::size_t numLanes) {
    if (numLanes == 4) return &kernels4;
#if defined(ORVAN_WIDE_KERNELS)
    if (numLanes == 8 && __builtin_cpu_supports("avx2")) return &kernels8;
    if (numLanes == 16 && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512vl") &&
        __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512bw"))
        return &kernels16;
#endif
    return nullptr;
}

namespace {

Kernels const& Choose() {
    char const* const forced = std::getenv("ORVAN_LANES");
    if (forced != nullptr)
        if (Kernels const* const kernels = OfWidth(static_cast<std::size_t>(std::atoi(forced)))) return *kernels;
    for (const std::size_t width : {std::size_t{16}, std::size_t{8}})
        if (Kernels const* const kernels = OfWidth(width)) return *kernels;
    return kernels4;
}

}  // namespace

Kernels const& Get() {
    static Kernels const& chosen = Choose();
    return chosen;
}

}  // namespace orvandsp::kernels
