// SPDX-License-Identifier: MIT
#pragma once

#include "tools/ula/SettingsStore.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace tav::tool {

/// A value before its type is known, for "type" may come second.
struct WholeNumber {
    long long number = 0;
    bool fits = true;
};
using JsonValue =
    std::variant<std::monostate, bool, WholeNumber, double, FastString, std::vector<FastString>>;

WholeNumber wholeNumberOf(std::uint64_t number);
/// Fails: an invalid setting and the reason.
Setting settingOf(ula::SettingsType type, const JsonValue& value, std::string& error);

/// One value of a command line in JSON: {"type": …, "value": …}, the same as get prints it, or a
/// bare value, whose type is `type` or, without it, the one that its JSON type suggests. Fails:
/// throws `CommandError`.
Setting readJsonValue(const std::string& text, ula::SettingsType type);

}  // namespace tav::tool
