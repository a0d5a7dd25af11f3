// SPDX-License-Identifier: MIT
// Mending GNUstep's methods, from +load.
#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

namespace foundation {

// Puts a function in the method's place and gives the one that was there.
template <class Function>
Function replaceMethod(Method method, Function function) {
    return reinterpret_cast<Function>(
        method_setImplementation(method, reinterpret_cast<IMP>(function)));
}

// The same for a class's own method. The class is looked up, not sent a message: that would
// initialize it before the program has begun. As long as it is not, the runtime notes the function
// in a table that all such classes share: the method's name must be no other class's, and never one
// like "init".
template <class Function>
Function replaceInstanceMethod(const char* type, SEL selector, Function function) {
    return replaceMethod(class_getInstanceMethod(objc_getClass(type), selector), function);
}

template <class Function>
Function replaceClassMethod(const char* type, SEL selector, Function function) {
    return replaceMethod(class_getClassMethod(objc_getClass(type), selector), function);
}

// A category brings the new method under a name of its own, and from then on each is called by the
// other's name. So the new one reaches GNUstep's by its own name.
inline void exchangeInstanceMethods(Class type, SEL theirs, SEL ours) {
    method_exchangeImplementations(class_getInstanceMethod(type, theirs),
                                   class_getInstanceMethod(type, ours));
}

inline void exchangeClassMethods(Class type, SEL theirs, SEL ours) {
    method_exchangeImplementations(class_getClassMethod(type, theirs),
                                   class_getClassMethod(type, ours));
}

}  // namespace foundation
