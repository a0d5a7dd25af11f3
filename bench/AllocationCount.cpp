// SPDX-License-Identifier: MIT
#include "bench/AllocationCount.h"

#include <atomic>
#include <malloc.h>

namespace {

std::atomic<std::size_t> allocations;

}  // namespace

// The C library lets a program define these and keeps its own under the names below.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) {
    allocations.fetch_add(1, std::memory_order_relaxed);
    return __libc_realloc(memory, size);
}
}

namespace tav::bench {

std::size_t allocationCount() {
    return allocations.load(std::memory_order_relaxed);
}

std::size_t heapBytes() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

}  // namespace tav::bench
