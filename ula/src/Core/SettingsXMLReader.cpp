// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsXMLReader.h"

#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/text/NumberConversion.h"

namespace tav::ula {

namespace {

using Setting = SettingsBase::Setting;

constexpr const char* kLogSource = "src/Core/SettingsXML";
// The two spellings tell a misplaced element from a bad type: programs compare them.
constexpr const char* kBadElement = "unknown tag in the setings file";
constexpr const char* kBadType = "unknown tag in the settings file";

const FastString kName = FastString::literal("name");
const FastString kType = FastString::literal("type");
const FastString kValue = FastString::literal("value");

}  // namespace

void SettingsXMLReader::read() {
    const xml::NodeIterator root = _document.rootNode();
    for (xml::NodeIterator group = root.beginChildren(); group != root.endChildren(); ++group)
        readGroup(group);
}

void SettingsXMLReader::readGroup(const xml::NodeIterator& group) {
    Place place;
    place.group = readAttribute(group, kName, place);
    if (group.name() != FastString::literal("group"))
        fail(group, kBadElement, "expected \"group\"");

    SettingsBase::KeyMap keys;
    for (xml::NodeIterator key = group.beginChildren(); key != group.endChildren(); ++key) {
        if (key.name() != FastString::literal("key"))
            fail(key, kBadElement, "expected \"key\"");
        place.key = FastString();
        place.key = readAttribute(key, kName, place);
        const FastString typeText = readAttribute(key, kType, place);
        const SettingsType type = SettingsXML::toType(typeText);
        if (type == SETTINGSTYPE_INVALID)
            fail(key, kBadType, "unknown type \"" + typeText.toStdString() + "\"");
        keys.append(place.key, readSetting(key, type, place));
    }
    keys.buildIndex();
    _settings.insert_or_assign(place.group, std::move(keys));
}

Setting SettingsXMLReader::readSetting(const xml::NodeIterator& key, SettingsType type,
                                       const Place& place) {
    if (type == SETTINGSTYPE_STRING_ARRAY)
        return readStringArray(key, place);
    // Only the first element counts, whatever its name.
    const FastString text = readAttribute(key.beginChildren(), kValue, place);
    switch (type) {
    case SETTINGSTYPE_INT:
        return Setting(readInt(text, place));
    case SETTINGSTYPE_BOOL:
        return Setting(readInt(text, place) > 0);
    case SETTINGSTYPE_DOUBLE:
        return Setting(readDouble(text, place));
    default:
        return Setting(text);
    }
}

Setting SettingsXMLReader::readStringArray(const xml::NodeIterator& key, const Place& place) {
    std::vector<FastString> texts;
    for (xml::NodeIterator value = key.beginChildren(); value != key.endChildren(); ++value)
        texts.push_back(readAttribute(value, kValue, place));
    return Setting(texts);
}

FastString SettingsXMLReader::readAttribute(const xml::NodeIterator& element,
                                            const FastString& name, const Place& place) {
    const xml::AttributeIterator attribute = element.findAttribute(name);
    _valueIsMissing = !attribute.exists();
    if (_valueIsMissing)
        debug::logf(kLogSource, 71, debug::LogLevelUnrecognised,
                    "the attribute \"%*\" is missing in group \"%*\", key \"%*\"")
            .add(name)
            .add(place.group)
            .add(place.key);
    return attribute.value();
}

void SettingsXMLReader::logNoNumber(const FastString& text, const char* expected,
                                    const Place& place) {
    if (_valueIsMissing)
        return;  // said already
    debug::logf(kLogSource, 84, debug::LogLevelUnrecognised,
                "\"%*\" is not %* in group \"%*\", key \"%*\"")
        .add(text)
        .add(expected)
        .add(place.group)
        .add(place.key);
}

int SettingsXMLReader::readInt(const FastString& text, const Place& place) {
    int number = 0;
    if (!text::parseInt(text, number))
        logNoNumber(text, "an int", place);
    return number;
}

double SettingsXMLReader::readDouble(const FastString& text, const Place& place) {
    double number = 0;
    if (!text::parseDouble(text, number))
        logNoNumber(text, "a double", place);
    return number;
}

void SettingsXMLReader::fail(const xml::NodeIterator& element, const char* message,
                             const std::string& detail) {
    _error = _document.errorAt(element, std::string(message) + ": " + detail).describe();
    throw SettingsException(message);
}

}  // namespace tav::ula
