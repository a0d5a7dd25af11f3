// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <functional>
#include <string>
#include <string_view>

namespace tav::tool {

/// Writes {"version": 1, "setting": {"type": "int", "value": 3}}. Doubles that JSON has no number
/// for are strings: "nan", "inf".
void writeJson(const Setting& setting, const std::function<void(std::string_view)>& write);

/// Writes {"version": 1, "groups": {GROUP: {KEY: {"type": …, "value": …}}}}, a key per line, in
/// the store's order, with a progress bar if that takes long.
void writeJson(const GroupMap& groups, const std::function<void(std::string_view)>& write);

}  // namespace tav::tool
