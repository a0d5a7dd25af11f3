// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettingsPListWriter.h"

#include <cmath>

namespace tav::ula {

namespace {

constexpr std::string_view kBegin =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";

template <class Value>
void writeElement(std::string_view begin, const Value& value, std::string_view end,
                  xml::XmlOutput& output) {
    output.append(begin);
    output.appendValue("", value);
    output.append(end);
}

/// As the platform spells what is no number; other readers understand it, too.
void writeReal(double value, xml::XmlOutput& output) {
    if (std::isnan(value))
        output.append("\t\t<real>nan</real>\n");
    else if (std::isinf(value))
        output.append(value < 0 ? "\t\t<real>-infinity</real>\n" : "\t\t<real>+infinity</real>\n");
    else
        writeElement("\t\t<real>", value, "</real>\n", output);
}

void writeStringArray(const std::vector<FastString>& texts, xml::XmlOutput& output) {
    if (texts.empty())
        return output.append("\t\t<array/>\n");
    output.append("\t\t<array>\n");
    for (const FastString& text : texts)
        writeElement("\t\t\t<string>", text, "</string>\n", output);
    output.append("\t\t</array>\n");
}

void writeValue(const SettingsBase::Setting& setting, xml::XmlOutput& output) {
    switch (setting.type()) {
    case SETTINGSTYPE_INT:
        return writeElement("\t\t<integer>", setting.asInt(), "</integer>\n", output);
    case SETTINGSTYPE_BOOL:
        return output.append(setting.asBool() ? "\t\t<true/>\n" : "\t\t<false/>\n");
    case SETTINGSTYPE_DOUBLE:
        return writeReal(setting.asDouble(), output);
    case SETTINGSTYPE_STRING:
        return writeElement("\t\t<string>", setting.asString(), "</string>\n", output);
    case SETTINGSTYPE_STRING_ARRAY:
        return writeStringArray(setting.asStringArray(), output);
    case SETTINGSTYPE_INVALID:
        break;
    }
}

void appendKey(const FastString& name, const SettingsBase::Setting& setting,
               xml::XmlOutput& output) {
    try {
        writeElement("\t\t<key>", name, "</key>\n", output);
        writeValue(setting, output);
    } catch (const xml::XmlException& exception) {
        throw xml::XmlException("key \"" + name.toStdString() + "\": " + exception.what());
    }
}

void appendGroup(const FastString& name, const SettingsBase::KeyMap& keys, xml::XmlOutput& output) {
    try {
        writeElement("\t<key>", name, "</key>\n", output);
        output.append(keys.empty() ? "\t<dict/>\n" : "\t<dict>\n");
        for (const auto& [keyName, setting] : keys)
            if (setting.type() != SETTINGSTYPE_INVALID)
                appendKey(keyName, setting, output);
        if (!keys.empty())
            output.append("\t</dict>\n");
    } catch (const xml::XmlException& exception) {
        throw xml::XmlException("group \"" + name.toStdString() + "\", " + exception.what());
    }
}

}  // namespace

void writeSettingsPList(const SettingsBase::GroupMap& settings, xml::XmlOutput& output) {
    output.append(kBegin);
    output.append(settings.empty() ? "<dict/>\n" : "<dict>\n");
    for (const auto& [name, keys] : settings)
        appendGroup(name, keys, output);
    output.append(settings.empty() ? "</plist>\n" : "</dict>\n</plist>\n");
}

}  // namespace tav::ula
