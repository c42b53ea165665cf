#include "support/allocation_count.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocations = 0;

void* Allocate(std::size_t size, std::size_t alignment) {
    ++allocations;
    if (size == 0) size = 1;
    const std::size_t rounded = (size + alignment - 1) / alignment * alignment;
    void* const memory =
        alignment > __STDCPP_DEFAULT_NEW_ALIGNMENT__ ? std::aligned_alloc(alignment, rounded) : std::malloc(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

long AllocationCount() noexcept {
    return allocations;
}

void* operator new(std::size_t size) {
    return Allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}
void* operator new[](std::size_t size) {
    return Allocate(size, __STDCPP_DEFAULT_NEW_ALIGNMENT__);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return Allocate(size, static_cast<std::size_t>(alignment));
}
// The nothrow forms too: std::stable_sort asks for its buffer by one of them, and a buffer must go back where it came
// from.
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete[](void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
