// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

namespace tav::ula {

enum class PrivilegedCopy { Done, Cancelled, Failed };

/// Copies a bundle with the rights of an administrator, whose password the system asks for. What
/// lies at the destination is removed first. Fails: not logged.
PrivilegedCopy copyWithPrivileges(NSString* source, NSString* destination);

}  // namespace tav::ula
