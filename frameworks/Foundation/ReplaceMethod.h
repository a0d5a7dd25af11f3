// SPDX-License-Identifier: MIT
// Mending a method of GNUstep's: a category brings the new one under a name of its own, and from
// then on each is called by the other's name. So the new one reaches GNUstep's by its own name.
#pragma once

#import <Foundation/Foundation.h>
#include <objc/runtime.h>

inline void exchangeInstanceMethods(Class type, SEL theirs, SEL ours) {
    method_exchangeImplementations(class_getInstanceMethod(type, theirs),
                                   class_getInstanceMethod(type, ours));
}

inline void exchangeClassMethods(Class type, SEL theirs, SEL ours) {
    method_exchangeImplementations(class_getClassMethod(type, theirs),
                                   class_getClassMethod(type, ours));
}
