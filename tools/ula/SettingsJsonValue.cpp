// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsJsonValue.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/Translation.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/text/NumberConversion.h"

#include <nlohmann/json.hpp>

namespace tav::tool {

using namespace tav::ula;

namespace {

std::string explain(SettingsType type, const char* expected) {
    return translated("a value of type %1 must be %2", SettingsXML::toString(type).toStdString(),
                      translated(expected));
}

Setting doubleOf(const JsonValue& value, std::string& error) {
    double number = 0;
    if (const double* given = std::get_if<double>(&value))
        return Setting(*given);
    if (const WholeNumber* whole = std::get_if<WholeNumber>(&value); whole && whole->fits)
        return Setting(static_cast<double>(whole->number));
    const FastString* text = std::get_if<FastString>(&value);
    if (text && text::parseDouble(*text, number))
        return Setting(number);
    error = explain(SETTINGSTYPE_DOUBLE, translatable("a number, \"nan\", \"inf\" or \"-inf\""));
    return {};
}

Setting intOf(const JsonValue& value, std::string& error) {
    const WholeNumber* whole = std::get_if<WholeNumber>(&value);
    if (whole && whole->fits && whole->number == static_cast<int>(whole->number))
        return Setting(static_cast<int>(whole->number));
    error =
        explain(SETTINGSTYPE_INT, translatable("a whole number from -2147483648 to 2147483647"));
    return {};
}

template <class T>
Setting plainOf(const JsonValue& value, SettingsType type, const char* expected,
                std::string& error) {
    if (const T* given = std::get_if<T>(&value))
        return Setting(*given);
    error = explain(type, expected);
    return {};
}

JsonValue valueOf(const Json& node) {
    if (node.is_boolean())
        return node.get<bool>();
    if (node.is_number_unsigned())
        return wholeNumberOf(node.get<Json::number_unsigned_t>());
    if (node.is_number_integer())
        return WholeNumber{node.get<Json::number_integer_t>(), true};
    if (node.is_number())
        return node.get<double>();
    if (node.is_string())
        return FastString(node.get_ref<const std::string&>());
    if (!node.is_array())
        return {};
    std::vector<FastString> texts;
    for (const Json& entry : node) {
        if (!entry.is_string())
            return {};
        texts.emplace_back(entry.get_ref<const std::string&>());
    }
    return texts;
}

SettingsType suggestedType(const JsonValue& value) {
    constexpr SettingsType kTypes[] = {SETTINGSTYPE_INVALID, SETTINGSTYPE_BOOL,
                                       SETTINGSTYPE_INT,     SETTINGSTYPE_DOUBLE,
                                       SETTINGSTYPE_STRING,  SETTINGSTYPE_STRING_ARRAY};
    return kTypes[value.index()];
}

}  // namespace

WholeNumber wholeNumberOf(std::uint64_t number) {
    const bool fits = number <= static_cast<std::uint64_t>(INT64_MAX);
    return {static_cast<long long>(number), fits};
}

Setting settingOf(SettingsType type, const JsonValue& value, std::string& error) {
    switch (type) {
    case SETTINGSTYPE_INT:
        return intOf(value, error);
    case SETTINGSTYPE_BOOL:
        return plainOf<bool>(value, type, translatable("true or false"), error);
    case SETTINGSTYPE_DOUBLE:
        return doubleOf(value, error);
    case SETTINGSTYPE_STRING:
        return plainOf<FastString>(value, type, translatable("a string"), error);
    case SETTINGSTYPE_STRING_ARRAY:
        return plainOf<std::vector<FastString>>(value, type, translatable("an array of strings"),
                                                error);
    case SETTINGSTYPE_INVALID:
        break;
    }
    error = translated("the type must be int, bool, double, string or string_array");
    return {};
}

Setting readJsonValue(const std::string& text, SettingsType type) {
    const std::string hint =
        translated("for instance: %1",
                   R"(3, true, 2.5, "text", ["a", "b"], {"type": "double", "value": "nan"})");
    Json node = Json::parse(text, nullptr, false);
    if (node.is_discarded())
        throw CommandError{ExitUsage, translated("the VALUE is no valid JSON"), hint};
    // What get prints.
    if (node.is_object() && node.size() == 2 && node.value("version", Json()) == kJsonVersion)
        node = node.value("setting", Json());
    const bool isTyped = node.is_object() && node.size() == 2 && node.contains("type") &&
                         node.contains("value") && node["type"].is_string();
    const JsonValue value = valueOf(isTyped ? node["value"] : node);
    if (isTyped)
        type = typeOf(node["type"].get<std::string>());
    else if (type == SETTINGSTYPE_INVALID)
        type = suggestedType(value);
    if (value.index() == 0)
        throw CommandError{ExitUsage, translated("the VALUE is no settings value"), hint};
    std::string error;
    Setting setting = settingOf(type, value, error);
    if (!error.empty())
        throw CommandError{ExitUsage, error, hint};
    return setting;
}

}  // namespace tav::tool
