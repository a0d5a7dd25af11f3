// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsValue.h"

#include "tools/ula/CommandError.h"
#include "tools/ula/Translation.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/text/NumberConversion.h"

#include <regex>

namespace tav::tool {

namespace {

using namespace tav::ula;

[[noreturn]] void refuse(const std::string& message, const std::string& hint = {}) {
    throw CommandError{ExitUsage, message, hint};
}

Setting parseInt(const std::string& word) {
    int number = 0;
    if (!text::parseInt(FastString(word), number))
        refuse(
            translated("\"%1\" is not an int: a whole number from -2147483648 to 2147483647", word),
            translated("use --type to store another type, for instance --type string"));
    return Setting(number);
}

Setting parseBool(const std::string& word) {
    for (const char* yes : {"true", "yes", "on", "1"})
        if (word == yes)
            return Setting(true);
    for (const char* no : {"false", "no", "off", "0"})
        if (word == no)
            return Setting(false);
    refuse(translated("\"%1\" is not a bool: true or false (also yes, no, on, off, 1, 0)", word),
           translated("use --type to store another type, for instance --type string"));
}

Setting parseDouble(const std::string& word) {
    double number = 0;
    if (!text::parseDouble(FastString(word), number))
        refuse(translated("\"%1\" is not a double: a number such as 2.5, 1e-3, inf or nan", word),
               translated("use --type to store another type, for instance --type string"));
    return Setting(number);
}

Setting arrayOf(const std::vector<std::string>& words) {
    return Setting(std::vector<FastString>(words.begin(), words.end()));
}

}  // namespace

Setting parseValue(SettingsType type, const std::vector<std::string>& words) {
    if (type == SETTINGSTYPE_STRING_ARRAY)
        return arrayOf(words);
    const FastString name = SettingsXML::toString(type);
    if (words.size() != 1)
        refuse(translated("the type %1 takes one VALUE, not %2", name.toStdString(),
                          std::to_string(words.size())),
               words.empty() ? translated("name a VALUE (\"\" is the empty string)")
                             : translated("use --type string_array to store them all"));
    switch (type) {
    case SETTINGSTYPE_INT:
        return parseInt(words[0]);
    case SETTINGSTYPE_BOOL:
        return parseBool(words[0]);
    case SETTINGSTYPE_DOUBLE:
        return parseDouble(words[0]);
    default:
        return Setting(FastString(words[0]));
    }
}

Setting guessValue(const std::vector<std::string>& words) {
    // Leading zeros and plus signs are left to strings: as numbers they would be lost.
    static const std::regex whole("-?(0|[1-9][0-9]{0,18})");
    static const std::regex broken("-?(0|[1-9][0-9]{0,99})(\\.[0-9]{1,99})?([eE][-+]?[0-9]{1,9})?");
    if (words.size() != 1)
        return arrayOf(words);
    const std::string& word = words[0];
    if (word == "true" || word == "false")
        return Setting(word == "true");
    if (word.size() > 200)  // no number; and the expressions recurse
        return Setting(FastString(word));
    if (std::regex_match(word, whole))
        return parseInt(word);
    if (word.find_first_of(".eE") != std::string::npos && std::regex_match(word, broken))
        return parseDouble(word);
    return Setting(FastString(word));
}

std::string typeText(const Setting& setting) {
    return SettingsXML::toString(setting.type()).toStdString();
}

SettingsType typeOf(const std::string& text) {
    for (const SettingsType type : {SETTINGSTYPE_INT, SETTINGSTYPE_BOOL, SETTINGSTYPE_DOUBLE,
                                    SETTINGSTYPE_STRING, SETTINGSTYPE_STRING_ARRAY})
        if (SettingsXML::toString(type) == text.c_str())
            return type;
    return SETTINGSTYPE_INVALID;
}

std::string bareText(const Setting& setting) {
    switch (setting.type()) {
    case SETTINGSTYPE_INT:
        return std::to_string(setting.asInt());
    case SETTINGSTYPE_BOOL:
        return setting.asBool() ? "true" : "false";
    case SETTINGSTYPE_DOUBLE:
        return text::dtostr(setting.asDouble()).toStdString();
    default:
        return setting.asString().toStdString();
    }
}

}  // namespace tav::tool
