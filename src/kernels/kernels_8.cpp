#define ORVAN_KERNEL_LANES 8
#define ORVAN_NARROWER_KERNELS kernels4
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

extern const Kernels kernels8;
const Kernels kernels8 = allKernels;

}  // namespace orvandsp::kernels
