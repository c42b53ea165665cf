#pragma once

#include "patcher/types.h"

namespace max {

/// The host's memory: what it hands out and what it is to free comes from here. Null when there is none.
void* sysmem_newptr(long size);
void* sysmem_newptrclear(long size);
void sysmem_freeptr(void* memory);

}  // namespace max
