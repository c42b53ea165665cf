#define ORVAN_KERNEL_LANES 8
#define ORVAN_NARROWER_KERNELS kernels16By4
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

// For few jobs on a processor of 16 lanes: eight lanes in twice as many registers as others have, so that no state is
// spilled.
extern const Kernels kernels16By8;
const Kernels kernels16By8 = allKernels;

}  // namespace orvandsp::kernels
