// SPDX-License-Identifier: MIT
#pragma once

#include <objc/runtime.h>

namespace appkit {

// Puts a function in place of a class's own method and gives the one that was there. The class is
// looked up, not sent a message: that would initialize it before the program has begun. As long as
// it is not, the runtime notes the function in a table that all such classes share: the method's
// name must be no other class's, and never one like "init".
template <class Function>
Function replaceMethod(const char* name, SEL selector, Function function) {
    Method method = class_getInstanceMethod(objc_getClass(name), selector);
    return reinterpret_cast<Function>(
        method_setImplementation(method, reinterpret_cast<IMP>(function)));
}

template <class Function>
Function replaceWorkspaceMethod(SEL selector, Function function) {
    return replaceMethod("NSWorkspace", selector, function);
}

}  // namespace appkit
