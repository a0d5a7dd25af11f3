// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace tav::ula {

/// The dictionary that is the root of a property list of any form, autoreleased.
/// Fails: nil, the reason with the path in `error`. Anything else than a regular file of up to
/// 256 MiB fails unread.
NSDictionary* loadPropertyList(const std::string& path, std::string& error);

/// Whether all that is in a dictionary are dictionaries, and anything is.
bool holdsGroups(NSDictionary* root);

}  // namespace tav::ula
