// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"
#include "ula/foundation/xml/XmlOutput.h"

namespace tav::ula {

/// Writes settings as a property list in XML. What has no type is left out.
/// Fails: throws `XmlException` for a name or value that XML cannot carry, and passes on what the
/// output throws.
void writeSettingsPList(const SettingsBase::GroupMap& settings, xml::XmlOutput& output);

}  // namespace tav::ula
