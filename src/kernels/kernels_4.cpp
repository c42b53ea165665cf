#define ORVAN_KERNEL_LANES 4
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

extern const Kernels kernels4;
const Kernels kernels4 = allKernels;

}  // namespace orvandsp::kernels
