// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>
#include <string>

namespace tav::ula {

/// The dictionary that is the root of a property list of any form, autoreleased.
/// Fails, as `savePropertyList`: nil or false, the reason with the path in `error`. Anything else
/// than a regular file of up to 256 MiB fails unread.
NSDictionary* loadPropertyList(const std::string& path, std::string& error);

/// Replaces the file durably by one in XML, making its folder if need be. `keepBackup` keeps the
/// file before as PATH.bak when it is a list of groups and not the same.
bool savePropertyList(NSDictionary* root, const std::string& path, bool keepBackup,
                      std::string& error);

}  // namespace tav::ula
