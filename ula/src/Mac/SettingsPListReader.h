// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

#import <Foundation/Foundation.h>
#include <string>

namespace tav::ula {

/// Fills an empty store from the root of a property list.
/// Fails: false, the reason in `error`. The groups before one that is no dictionary are there, in
/// the list's own order, which is none; after a value that is no setting nothing is.
bool readSettingsPList(NSDictionary* root, SettingsBase::GroupMap& settings, std::string& error);

}  // namespace tav::ula
