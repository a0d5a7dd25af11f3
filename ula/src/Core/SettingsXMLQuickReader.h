// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"

namespace tav::ula {

/// Merges a settings file that is spelt the way the library's own writer spells it, give or take
/// white space between elements; half the time of reading it through a document tree, with the
/// same outcome.
/// Fails: false, and nothing merged, at anything out of the ordinary, be it an error or not: the
/// document tree then decides what it is.
bool readSettingsXMLQuickly(const FastString& path, SettingsBase::GroupMap& settings);

}  // namespace tav::ula
