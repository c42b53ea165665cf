#define ORVAN_KERNEL_LANES 16
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

extern const Kernels kernels16;
const Kernels kernels16 = allKernels;

}  // namespace orvandsp::kernels
