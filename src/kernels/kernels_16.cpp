#define ORVAN_KERNEL_LANES 16
#define ORVAN_NARROWER_KERNELS kernels16By8
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

extern const Kernels kernels16;
const Kernels kernels16 = allKernels;

}  // namespace orvandsp::kernels
