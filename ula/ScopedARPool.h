// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

namespace tav::ula {

/// An autorelease pool for the block it stands in: what the platform's objects autorelease in
/// between is released at the end. Pools of one thread end in the opposite order of their making.
/// Thread: ends in the thread that made it.
class ULA_API ScopedARPool {
public:
    ScopedARPool();
    ~ScopedARPool();
    ScopedARPool(const ScopedARPool&) = delete;
    ScopedARPool& operator=(const ScopedARPool&) = delete;

private:
    void* _pool;
};

}  // namespace tav::ula
