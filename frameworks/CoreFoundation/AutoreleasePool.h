// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace cf {

/// An autorelease pool for a scope. Threads that GNUstep has never seen have none of their own.
class AutoreleasePool {
public:
    AutoreleasePool() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~AutoreleasePool() { [_pool release]; }
    AutoreleasePool(const AutoreleasePool&) = delete;
    AutoreleasePool& operator=(const AutoreleasePool&) = delete;

private:
    NSAutoreleasePool* _pool;
};

}  // namespace cf
