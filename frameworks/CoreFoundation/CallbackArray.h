// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

#include <CoreFoundation/CFArray.h>
#include <vector>

/// An immutable array of values that need not be objects, kept by the call-backs it was made with.
@interface ULACallbackArray : NSArray {
    CFArrayCallBacks _callBacks;
    std::vector<const void*> _values;
}

/// Null call-backs keep nothing.
- (id)initWithValues:(const void**)values
               count:(NSUInteger)count
           callBacks:(const CFArrayCallBacks*)callBacks;

@end
