// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsXMLQuickReader.h"

#include "ula/foundation/xml/XmlWriter.h"
#include "ula/src/Core/SettingsTypeText.h"
#include "ula/src/Core/XmlCursor.h"

#include <array>
#include <charconv>
#include <vector>

namespace tav::ula {

namespace {

using Setting = SettingsBase::Setting;

/// The bytes at which reading an attribute's value has to stop and think.
constexpr std::array<bool, 256> kSpecial = [] {
    std::array<bool, 256> bytes{};
    for (const char byte : {'"', '&', '<', '\t', '\n', '\r'})
        bytes[static_cast<unsigned char>(byte)] = true;
    return bytes;
}();

constexpr auto isPlainInValue = [](char byte) {
    return !kSpecial[static_cast<unsigned char>(byte)];
};

class XMLQuickReader : private XmlCursor {
public:
    explicit XMLQuickReader(const xml::XmlText& text) : XmlCursor(text) {}

    bool read() { return skipDeclaration() && take("<settings>") && readGroups() && atEnd(); }
    void mergeInto(SettingsBase::GroupMap& settings) {
        for (Group& group : _groups)
            settings.insert_or_assign(group.name, std::move(group.keys));
    }

private:
    struct Group {
        FastString name;
        SettingsBase::KeyMap keys;
    };

    bool readGroups();
    bool readGroup();
    bool readKey(SettingsBase::KeyMap& keys);
    bool readSetting(SettingsType type, Setting& setting);
    bool readStringArray(Setting& setting);
    bool readValue(std::string_view& value);
    bool readAttributeValue(std::string_view& value);

    bool skipDeclaration();

    std::vector<Group> _groups;
};

bool XMLQuickReader::skipDeclaration() {
    return takeHere(xml::XmlWriter::kDeclaration) || !takeHere("<?");
}

bool XMLQuickReader::readGroups() {
    while (!take("</settings>"))
        if (!readGroup())
            return false;
    return true;
}

bool XMLQuickReader::readGroup() {
    std::string_view name;
    if (!takeHere("<group name=") || !readAttributeValue(name))
        return false;
    Group& group = _groups.emplace_back();
    group.name = share(name);
    if (takeHere("/>"))
        return true;
    if (!takeHere(">"))
        return false;
    while (!take("</group>"))
        if (!readKey(group.keys))
            return false;
    group.keys.buildIndex();
    return true;
}

bool XMLQuickReader::readKey(SettingsBase::KeyMap& keys) {
    std::string_view name;
    std::string_view typeText;
    if (!takeHere("<key name=") || !readAttributeValue(name) || !takeHere(" type=") ||
        !readAttributeValue(typeText))
        return false;
    const SettingsType type = typeOfText(typeText);
    Setting setting;
    if (takeHere("/>")) {
        if (type != SETTINGSTYPE_STRING_ARRAY)
            return false;
        setting = Setting(std::vector<FastString>());
    } else if (!takeHere(">") || !readSetting(type, setting) || !take("</key>")) {
        return false;
    }
    keys.append(share(name), std::move(setting));
    return true;
}

template <class Number>
bool parse(std::string_view text, Number& number) {
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

bool XMLQuickReader::readSetting(SettingsType type, Setting& setting) {
    if (type == SETTINGSTYPE_STRING_ARRAY)
        return readStringArray(setting);
    std::string_view value;
    int integer = 0;
    double number = 0;
    if (!readValue(value))
        return false;
    switch (type) {
    case SETTINGSTYPE_INT:
        return parse(value, integer) && (setting = Setting(integer), true);
    case SETTINGSTYPE_BOOL:
        return parse(value, integer) && (setting = Setting(integer > 0), true);
    case SETTINGSTYPE_DOUBLE:
        // A NaN's text is read elsewhere: it may carry bits.
        return parse(value, number) && number == number && (setting = Setting(number), true);
    case SETTINGSTYPE_STRING:
        setting = Setting(share(value));
        return true;
    default:
        return false;
    }
}

bool XMLQuickReader::readStringArray(Setting& setting) {
    std::vector<FastString> texts;
    std::string_view value;
    skipBlanks();
    while (_next < _end && !rest().starts_with("</")) {
        if (!readValue(value))
            return false;
        texts.push_back(share(value));
        skipBlanks();
    }
    setting = Setting(std::move(texts));
    return true;
}

bool XMLQuickReader::readValue(std::string_view& value) {
    return take("<value value=") && readAttributeValue(value) && takeHere("/>");
}

bool XMLQuickReader::readAttributeValue(std::string_view& value) {
    if (!takeHere("\""))
        return false;
    char* const begin = _next;
    while (_next < _end && isPlainInValue(*_next))
        ++_next;
    value = {begin, static_cast<std::size_t>(_next - begin)};
    return takeHere("\"") || (decodeTo('"', isPlainInValue, begin, value) && takeHere("\""));
}

}  // namespace

bool readSettingsXMLQuickly(const FastString& path, SettingsBase::GroupMap& settings) {
    xml::XmlText text;
    if (!readCleanText(path, text))
        return false;
    XMLQuickReader reader(text);
    if (!reader.read())
        return false;
    reader.mergeInto(settings);
    return true;
}

}  // namespace tav::ula
