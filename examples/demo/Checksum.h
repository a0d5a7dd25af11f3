// SPDX-License-Identifier: MIT
#pragma once

#include <ula/Settings.h>

namespace demo {

/// A sum over every group, key, type and value but the sum itself, as it stands in the settings.
tav::ula::FastString checksumOf(const tav::ula::SettingsBase& settings);
/// Puts the sum into the settings, and tells whether the one in them is right.
void sign(tav::ula::SettingsBase& settings);
bool isSigned(const tav::ula::SettingsBase& settings);

}  // namespace demo
