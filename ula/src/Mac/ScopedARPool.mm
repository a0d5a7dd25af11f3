// SPDX-License-Identifier: MIT
#include "ula/ScopedARPool.h"

#import <Foundation/Foundation.h>

namespace tav::ula {

ScopedARPool::ScopedARPool() : _pool([[NSAutoreleasePool alloc] init]) {
}

ScopedARPool::~ScopedARPool() {
    [static_cast<NSAutoreleasePool*>(_pool) release];
}

}  // namespace tav::ula
