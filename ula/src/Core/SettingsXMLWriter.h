// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsBase.h"
#include "ula/foundation/xml/XmlOutput.h"

namespace tav::ula {

/// Writes a store as a settings document, in the store's order. Straight to the file's text: the
/// same bytes that a document tree would give, without building one.
/// Fails: throws `xml::XmlException` that names group and key of what XML cannot carry.
void writeSettingsXML(const SettingsBase::GroupMap& settings, xml::XmlOutput& output);

}  // namespace tav::ula
