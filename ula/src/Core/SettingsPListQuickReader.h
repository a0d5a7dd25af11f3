// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

namespace tav::ula {

/// Reads a property list of settings that is spelt as writers of such lists spell it, which is
/// nearly every one, into an empty store.
/// Fails: false and nothing changed, for any other file: then the platform's reader decides what it
/// is.
bool readSettingsPListQuickly(const FastString& path, SettingsBase::GroupMap& settings);

}  // namespace tav::ula
