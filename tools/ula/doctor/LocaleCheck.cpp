// SPDX-License-Identifier: MIT
#include "tools/ula/doctor/LocaleCheck.h"

#include "tools/ula/Translation.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/ShellWord.h"

#include <cctype>
#include <clocale>
#include <fstream>
#include <langinfo.h>
#include <string_view>
#include <vector>

namespace tav::tool::doctor {

namespace {

constexpr const char* kVariables[] = {
    "LC_CTYPE",       "LC_NUMERIC",        "LC_TIME", "LC_COLLATE", "LC_MONETARY",
    "LC_MESSAGES",    "LC_PAPER",          "LC_NAME", "LC_ADDRESS", "LC_TELEPHONE",
    "LC_MEASUREMENT", "LC_IDENTIFICATION", "LANG"};

struct Setting {
    std::string variable;
    std::string locale;
};

/// Those that take effect: LC_ALL stands above all others.
std::vector<Setting> settingsOf(const Host& host) {
    if (const std::string all = host.variable("LC_ALL"); !all.empty())
        return {{"LC_ALL", all}};
    std::vector<Setting> settings;
    for (const char* const variable : kVariables)
        if (const std::string locale = host.variable(variable); !locale.empty())
            settings.push_back({variable, locale});
    return settings;
}

/// The encoding of its texts. Empty for a locale that is not installed.
std::string encodingOf(const std::string& name) {
    const locale_t locale = newlocale(LC_ALL_MASK, name.c_str(), nullptr);
    if (locale == nullptr)
        return {};
    std::string encoding = nl_langinfo_l(CODESET, locale);
    freelocale(locale);
    return encoding;
}

/// "de_AT.utf8" and "de_AT.UTF-8" are one.
std::string plainName(std::string_view name) {
    std::string plain;
    bool isEncoding = false;
    for (const char character : name) {
        isEncoding = character == '.' || (isEncoding && character != '@');
        if (!isEncoding || character != '-')
            plain += isEncoding ? static_cast<char>(std::tolower(character)) : character;
    }
    return plain;
}

/// Every locale that can be made is a line there: "de_AT.UTF-8 UTF-8".
std::string remedyFor(const Setting& setting, const Host& host) {
    std::ifstream file(host.supportedLocales);
    if (!file)
        return asRoot("apt-get install locales  # " +
                      translated("then: %1", std::string("ula doctor")));
    for (std::string line; std::getline(file, line);)
        if (plainName(line.substr(0, line.find(' '))) == plainName(setting.locale))
            return "echo " + shellWord(line) + " | " + asRoot("tee -a /etc/locale.gen") + " && " +
                   asRoot("locale-gen");
    return "export " + setting.variable + "=C.UTF-8";
}

/// The one that says how texts are encoded.
Setting textSetting(const Host& host) {
    for (const char* const variable : {"LC_ALL", "LC_CTYPE", "LANG"})
        if (const std::string locale = host.variable(variable); !locale.empty())
            return {variable, locale};
    return {"LANG", "C"};
}

Finding examine(const Host& host) {
    for (const Setting& setting : settingsOf(host))
        if (encodingOf(setting.locale).empty())
            return {CheckState::Problem,
                    translated("%1: this locale is not installed",
                               setting.variable + "=" + setting.locale),
                    remedyFor(setting, host)};
    const Setting text = textSetting(host);
    const std::string encoding = encodingOf(text.locale);
    if (encoding != "UTF-8")
        return {CheckState::Warning,
                translated("texts are in %1: other characters are lost in the %2 locale", encoding,
                           text.locale),
                "export " + text.variable + "=C.UTF-8"};
    return {CheckState::Ok, translated("%1 is installed", text.locale)};
}

}  // namespace

Check localeCheck() {
    return {"locale",
            examine,
            {CheckState::Unknown, translated("the locales could not be read in time")}};
}

}  // namespace tav::tool::doctor
