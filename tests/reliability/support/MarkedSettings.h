// SPDX-License-Identifier: MIT
#pragma once

#include "ula/SettingsXML.h"

#include <optional>
#include <string>

namespace tav::test {

/// Fills a store with values of every type that all carry the same mark. A file of it takes
/// several writes, so that there is a middle to be killed in.
void fillWithMark(ula::SettingsXML& settings, int mark);

/// The mark that every value in the store carries; none when one is missing or another's.
std::optional<int> markOf(ula::SettingsXML& settings);
/// The same for a file, which must be readable; nothing is kept aside or changed.
std::optional<int> markOfFile(const std::string& path);

/// The bytes of the file of a store that is filled with a mark.
std::string textWithMark(int mark);
/// By way of a file, for processes that are killed and clear nothing away.
std::string textWithMark(int mark, const std::string& path);

}  // namespace tav::test
