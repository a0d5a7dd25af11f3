// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsPListQuickReader.h"

#include "ula/foundation/xml/XmlWriter.h"
#include "ula/src/Core/XmlCursor.h"

#include <charconv>
#include <cstring>
#include <vector>

namespace tav::ula {

namespace {

using Setting = SettingsBase::Setting;

class PListQuickReader : private XmlCursor {
public:
    explicit PListQuickReader(const xml::XmlText& text) : XmlCursor(text) {}

    bool read(SettingsBase::GroupMap& settings) {
        return skipProlog() && take("<plist version=\"1.0\">") && readGroups(settings) &&
               take("</plist>") && atEnd();
    }

private:
    bool skipProlog();
    bool readGroups(SettingsBase::GroupMap& settings);
    bool readKeys(SettingsBase::KeyMap& keys);
    bool readSetting(Setting& setting);
    bool readInteger(Setting& setting);
    bool readReal(Setting& setting);
    bool readStringArray(Setting& setting);
    bool readKey(FastString& name);
    bool readContent(std::string_view end, std::string_view& content);
};

/// The document type is one of the two that lists have had.
bool PListQuickReader::skipProlog() {
    if (!takeHere(xml::XmlWriter::kDeclaration) && rest().starts_with("<?"))
        return false;
    if (!take("<!DOCTYPE plist PUBLIC \"-//Apple"))
        return true;
    takeHere(" Computer");
    return takeHere("//DTD PLIST 1.0//EN\" "
                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">");
}

bool PListQuickReader::readGroups(SettingsBase::GroupMap& settings) {
    if (take("<dict/>"))
        return true;
    if (!takeHere("<dict>"))
        return false;
    while (!take("</dict>")) {
        FastString name;
        SettingsBase::KeyMap keys;
        if (!readKey(name) || !readKeys(keys))
            return false;
        settings.insert_or_assign(name, std::move(keys));
    }
    return true;
}

bool PListQuickReader::readKeys(SettingsBase::KeyMap& keys) {
    if (take("<dict/>"))
        return true;
    if (!takeHere("<dict>"))
        return false;
    while (!take("</dict>")) {
        FastString name;
        Setting setting;
        if (!readKey(name) || !readSetting(setting))
            return false;
        keys.append(name, std::move(setting));
    }
    keys.buildIndex();
    return true;
}

bool PListQuickReader::readKey(FastString& name) {
    std::string_view content;
    if (!take("<key>") || !readContent("</key>", content))
        return false;
    name = share(content);
    return true;
}

bool PListQuickReader::readSetting(Setting& setting) {
    if (take("<integer>"))
        return readInteger(setting);
    if (takeHere("<true/>"))
        return setting = Setting(true), true;
    if (takeHere("<false/>"))
        return setting = Setting(false), true;
    if (takeHere("<real>"))
        return readReal(setting);
    if (takeHere("<string/>"))
        return setting = Setting(FastString()), true;
    if (takeHere("<array/>"))
        return setting = Setting(std::vector<FastString>()), true;
    if (takeHere("<array>"))
        return readStringArray(setting);
    std::string_view content;
    if (!takeHere("<string>") || !readContent("</string>", content))
        return false;
    setting = Setting(share(content));
    return true;
}

/// The store has 32 bits for it: the lower ones.
bool PListQuickReader::readInteger(Setting& setting) {
    std::int64_t number = 0;
    const auto [stop, error] = std::from_chars(_next, _end, number);
    if (error != std::errc())
        return false;
    _next += stop - _next;
    setting = Setting(static_cast<int>(number));
    return takeHere("</integer>");
}

/// What begins with no digit may be infinite, or no number.
bool PListQuickReader::readReal(Setting& setting) {
    double number = 0;
    const char* const digit = _next + (rest().starts_with('-') ? 1 : 0);
    if (digit >= _end || *digit < '0' || *digit > '9')
        return false;
    const auto [stop, error] = std::from_chars(_next, _end, number);
    if (error != std::errc())
        return false;
    _next += stop - _next;
    setting = Setting(number);
    return takeHere("</real>");
}

bool PListQuickReader::readStringArray(Setting& setting) {
    std::vector<FastString> texts;
    std::string_view content;
    while (!take("</array>")) {
        if (takeHere("<string/>"))
            content = {};
        else if (!takeHere("<string>") || !readContent("</string>", content))
            return false;
        texts.push_back(share(content));
    }
    setting = Setting(std::move(texts));
    return true;
}

bool PListQuickReader::readContent(std::string_view end, std::string_view& content) {
    char* const begin = _next;
    while (_next < _end && *_next != '<' && *_next != '&')
        ++_next;
    content = {begin, static_cast<std::size_t>(_next - begin)};
    constexpr auto isPlain = [](char) { return true; };
    return takeHere(end) || (decodeTo('<', isPlain, begin, content) && takeHere(end));
}

}  // namespace

bool readSettingsPListQuickly(const FastString& path, SettingsBase::GroupMap& settings) {
    xml::XmlText text;
    if (!readCleanText(path, text))
        return false;
    SettingsBase::GroupMap read;
    if (!PListQuickReader(text).read(read))
        return false;
    settings.swap(read);
    return true;
}

}  // namespace tav::ula
