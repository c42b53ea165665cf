#include "patcher/memory.h"

#include <cstdlib>

namespace max {

void* sysmem_newptr(long size) {
    return size < 0 ? nullptr : std::malloc(static_cast<std::size_t>(size));
}

void* sysmem_newptrclear(long size) {
    return size < 0 ? nullptr : std::calloc(1, static_cast<std::size_t>(size));
}

void sysmem_freeptr(void* memory) {
    std::free(memory);
}

}  // namespace max
