// SPDX-License-Identifier: MIT
#pragma once

#include <objc/runtime.h>

namespace appkit {

// Puts a function in place of a method of the workspace's and gives the one that was there. The
// class is looked up, not sent a message: that would initialize the workspace before the program
// has begun.
template <class Function>
Function replaceWorkspaceMethod(SEL selector, Function function) {
    Method method = class_getInstanceMethod(objc_getClass("NSWorkspace"), selector);
    return reinterpret_cast<Function>(
        method_setImplementation(method, reinterpret_cast<IMP>(function)));
}

}  // namespace appkit
