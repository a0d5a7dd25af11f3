// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace tav::ula {

/// Memory for calls. They are made in one thread and gone in another, for which a general
/// allocator is slow: it is kept for the next calls instead, up to a few thousand pieces in all
/// and as many in each thread that makes calls.
/// Thread: any.
namespace JobMemory {

/// A piece of `kSize` bytes, aligned for anything. Fails: throws std::bad_alloc.
void* take();
void give(void* piece) noexcept;

inline constexpr std::size_t kSize = 240;

}  // namespace JobMemory

}  // namespace tav::ula
