// SPDX-License-Identifier: MIT
#pragma once

#include <CoreServices/CoreServices.h>

#import <Foundation/Foundation.h>

namespace tav::ula {

/// The file reference of a path. Fails: false where nothing lies.
bool fileReferenceOf(NSString* path, bool isDirectory, FSRef& reference);

/// The POSIX path of a reference, autoreleased. Fails: nil.
NSString* pathOfFileReference(const FSRef& reference);

}  // namespace tav::ula
