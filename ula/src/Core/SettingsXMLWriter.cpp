// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsXMLWriter.h"

#include "ula/SettingsXML.h"
#include "ula/foundation/xml/XmlWriter.h"

namespace tav::ula {

namespace {

template <class Value>
void writeValue(const Value& value, xml::XmlOutput& output) {
    output.append("\n\t\t\t<value value=\"");
    output.appendValue("value", value);
    output.append("\"/>");
}

void writeValues(const SettingsBase::Setting& setting, xml::XmlOutput& output) {
    switch (setting.type()) {
    case SETTINGSTYPE_INT:
        return writeValue(setting.asInt(), output);
    case SETTINGSTYPE_BOOL:
        return writeValue(setting.asBool() ? 1 : 0, output);
    case SETTINGSTYPE_DOUBLE:
        return writeValue(setting.asDouble(), output);
    case SETTINGSTYPE_STRING:
        return writeValue(setting.asString(), output);
    case SETTINGSTYPE_STRING_ARRAY:
        for (const FastString& text : setting.asStringArray())
            writeValue(text, output);
        return;
    case SETTINGSTYPE_INVALID:
        break;
    }
    debug::assertionFailed("src/Core/SettingsXML", 158, "0");
}

bool hasValues(const SettingsBase::Setting& setting) {
    return setting.type() != SETTINGSTYPE_INVALID &&
           (setting.type() != SETTINGSTYPE_STRING_ARRAY || !setting.asStringArray().empty());
}

void writeKey(const FastString& name, const SettingsBase::Setting& setting,
              xml::XmlOutput& output) {
    output.append("\n\t\t<key name=\"");
    output.appendValue("name", name);
    output.append("\" type=\"");
    output.appendValue("type", SettingsXML::toString(setting.type()));
    const bool isEmpty = !hasValues(setting);
    output.append(isEmpty ? "\"/>" : "\">");
    writeValues(setting, output);
    if (!isEmpty)
        output.append("\n\t\t</key>");
}

void writeGroupName(const FastString& name, xml::XmlOutput& output) {
    try {
        output.appendValue("name", name);
    } catch (const xml::XmlException& exception) {
        throw xml::XmlException("group \"" + name.toStdString() + "\": " + exception.what());
    }
}

void writeGroup(const FastString& name, const SettingsBase::KeyMap& keys, xml::XmlOutput& output) {
    output.append("\n\t<group name=\"");
    writeGroupName(name, output);
    output.append(keys.empty() ? "\"/>" : "\">");
    for (const auto& [keyName, setting] : keys) {
        try {
            writeKey(keyName, setting, output);
        } catch (const xml::XmlException& exception) {
            throw xml::XmlException("group \"" + name.toStdString() + "\", key \"" +
                                    keyName.toStdString() + "\": " + exception.what());
        }
    }
    if (!keys.empty())
        output.append("\n\t</group>");
}

}  // namespace

void writeSettingsXML(const SettingsBase::GroupMap& settings, xml::XmlOutput& output) {
    output.append(xml::XmlWriter::kDeclaration);
    output.append(settings.empty() ? "\n<settings/>" : "\n<settings>");
    for (const auto& [name, keys] : settings)
        writeGroup(name, keys, output);
    output.append(settings.empty() ? "\n" : "\n</settings>\n");
}

}  // namespace tav::ula
