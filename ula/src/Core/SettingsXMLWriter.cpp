// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsXMLWriter.h"

#include "ula/SettingsXML.h"

namespace tav::ula {

namespace {

const FastString kGroup = FastString::literal("group");
const FastString kKey = FastString::literal("key");
const FastString kName = FastString::literal("name");
const FastString kType = FastString::literal("type");
const FastString kValue = FastString::literal("value");

template <class Value>
void writeValue(const Value& value, xml::XmlWriter& writer) {
    writer.beginElement(kValue);
    writer.attribute(kValue, value);
    writer.endElement();
}

void writeValues(const SettingsBase::Setting& setting, xml::XmlWriter& writer) {
    switch (setting.type()) {
    case SETTINGSTYPE_INT:
        return writeValue(setting.asInt(), writer);
    case SETTINGSTYPE_BOOL:
        return writeValue(setting.asBool() ? 1 : 0, writer);
    case SETTINGSTYPE_DOUBLE:
        return writeValue(setting.asDouble(), writer);
    case SETTINGSTYPE_STRING:
        return writeValue(setting.asString(), writer);
    case SETTINGSTYPE_STRING_ARRAY:
        for (const FastString& text : setting.asStringArray())
            writeValue(text, writer);
        return;
    case SETTINGSTYPE_INVALID:
        break;
    }
    debug::assertionFailed("src/Core/SettingsXML", 158, "0");
}

void writeKey(const FastString& name, const SettingsBase::Setting& setting,
              xml::XmlWriter& writer) {
    writer.beginElement(kKey);
    writer.attribute(kName, name);
    writer.attribute(kType, SettingsXML::toString(setting.type()));
    writeValues(setting, writer);
    writer.endElement();
}

}  // namespace

void writeSettings(const SettingsBase::GroupMap& settings, xml::XmlWriter& writer) {
    writer.beginElement(FastString::literal("settings"));
    for (const auto& [groupName, keys] : settings) {
        writer.beginElement(kGroup);
        writer.attribute(kName, groupName);
        for (const auto& [keyName, setting] : keys)
            writeKey(keyName, setting, writer);
        writer.endElement();
    }
    writer.endElement();
}

}  // namespace tav::ula
