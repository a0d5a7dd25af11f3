// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <string>

namespace tav::tool {

/// The groups in a text that `writeJson` wrote or somebody wrote like it. `name` stands for the
/// text in messages.
/// Fails: throws `CommandError` with line and column.
GroupMap readJson(const std::string& text, const std::string& name);

}  // namespace tav::tool
