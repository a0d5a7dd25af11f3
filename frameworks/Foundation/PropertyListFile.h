// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

#include <string>

namespace foundation {

/// The dictionary in a property list of any bundle, also of one that means harm: GNUstep's own
/// reader ends the program on some lists. Owner: the pool.
/// Fails: nil, also for what is no plain file or larger than any bundle's.
__attribute__((visibility("default"))) NSDictionary* propertyListAt(const std::string& path);

}  // namespace foundation
