// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsJsonWriter.h"

#include "tools/ula/JsonOutput.h"
#include "tools/ula/ProgressBar.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/Translation.h"

#include <cmath>

namespace tav::tool {

namespace {

std::string jsonDouble(const Setting& setting) {
    std::string text = bareText(setting);
    if (!std::isfinite(setting.asDouble()))
        return '"' + text + '"';
    // So that no reader takes it for a whole number and drops the sign of a zero.
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

std::string jsonArray(const std::vector<FastString>& texts) {
    std::string result = "[";
    for (const FastString& text : texts)
        result += (result.size() > 1 ? ", " : "") + jsonText(text.view());
    return result + "]";
}

std::string jsonValue(const Setting& setting) {
    switch (setting.type()) {
    case ula::SETTINGSTYPE_DOUBLE:
        return jsonDouble(setting);
    case ula::SETTINGSTYPE_STRING:
        return jsonText(setting.asString().view());
    case ula::SETTINGSTYPE_STRING_ARRAY:
        return jsonArray(setting.asStringArray());
    default:
        return bareText(setting);
    }
}

std::string jsonOf(const Setting& setting) {
    return "{\"type\": \"" + typeText(setting) + "\", \"value\": " + jsonValue(setting) + "}";
}

}  // namespace

void writeJson(const Setting& setting, const std::function<void(std::string_view)>& write) {
    write("{\n  \"version\": " + std::to_string(kJsonVersion) +
          ",\n  \"setting\": " + jsonOf(setting) + "\n}\n");
}

void writeJson(const GroupMap& groups, const std::function<void(std::string_view)>& write) {
    std::size_t total = 0, done = 0;
    for (const auto& [group, keys] : groups)
        total += keys.size();
    ProgressBar bar(translated("exporting"), total);
    write("{\n  \"version\": " + std::to_string(kJsonVersion) + ",\n  \"groups\": {");
    const char* groupComma = "";
    for (const auto& [group, keys] : groups) {
        write(groupComma + ("\n    " + jsonText(group.view())) + ": {");
        const char* keyComma = "";
        for (const auto& [key, setting] : keys) {
            write(keyComma + ("\n      " + jsonText(key.view())) + ": " + jsonOf(setting));
            keyComma = ",";
            bar.advance(++done);
        }
        write(keys.empty() ? "}" : "\n    }");
        groupComma = ",";
    }
    write(groups.empty() ? "}\n}\n" : "\n  }\n}\n");
}

}  // namespace tav::tool
