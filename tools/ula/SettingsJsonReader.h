// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <string>

namespace tav::tool {

/// The groups in a text that `writeJson` wrote or somebody wrote like it. `name` stands for the
/// text in messages.
/// Fails: throws `CommandError` with line and column.
GroupMap readJson(const std::string& text, const std::string& name);

/// One value of a command line in JSON: {"type": …, "value": …}, or a bare value, whose type is
/// `type` or, without it, the one that its JSON type suggests.
/// Fails: throws `CommandError`.
Setting readJsonValue(const std::string& text, ula::SettingsType type);

}  // namespace tav::tool
