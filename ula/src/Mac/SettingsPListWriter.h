// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

#import <Foundation/Foundation.h>
#include <string>

namespace tav::ula {

/// The root of a property list of the settings, autoreleased. What has no type is left out.
/// Fails: nil, the reason in `error`, for a name or text that is not UTF-8.
NSDictionary* makePropertyList(const SettingsBase::GroupMap& settings, std::string& error);

}  // namespace tav::ula
