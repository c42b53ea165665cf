#define ORVAN_KERNEL_LANES 4
#include "kernels/all_kernels.h"

namespace orvandsp::kernels {

// For few jobs on a processor of 16 lanes: four lanes in twice as many registers as others have, so that no state is
// spilled.
extern const Kernels kernels16By4;
const Kernels kernels16By4 = allKernels;

}  // namespace orvandsp::kernels
