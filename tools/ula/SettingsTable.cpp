// SPDX-License-Identifier: MIT
#include "tools/ula/SettingsTable.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/SettingsValue.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"

#include <algorithm>

namespace tav::tool {

namespace {

/// Longer names push their own line to the right, and not all the others.
constexpr std::size_t kWidestName = 32;

std::vector<std::string> valueLines(const Setting& setting) {
    if (setting.type() == ula::SETTINGSTYPE_STRING)
        return {quotedText(setting.asString().view())};
    if (setting.type() != ula::SETTINGSTYPE_STRING_ARRAY)
        return {bareText(setting)};
    std::vector<std::string> lines;
    for (const FastString& text : setting.asStringArray())
        lines.push_back(quotedText(text.view()));
    if (lines.empty())
        lines.push_back(translated("(no entries)"));
    return lines;
}

/// A name that cannot be mistaken for a blank line or a stray blank.
std::string nameText(const FastString& name) {
    const std::string_view view = name.view();
    const bool isClear = !view.empty() && view.front() != ' ' && view.back() != ' ';
    return isClear ? displayText(view) : quotedText(view);
}

void printLine(const std::string& line, const char* colour, const Colours& colours) {
    const std::size_t columns = outputColumns();
    print(colour);
    print(columns ? cutToWidth(line, columns) : line);
    print(*colour ? colours.plain : "");
    print("\n");
}

}  // namespace

void SettingsTable::addGroup(const FastString& name) {
    _lines.push_back({true, ' ', nameText(name)});
}

void SettingsTable::addKey(const FastString& name, const Setting& setting, char mark) {
    _lines.push_back({false, mark, nameText(name), typeText(setting), valueLines(setting)});
}

void SettingsTable::addNote(const std::string& text, char mark) {
    _lines.push_back({false, mark, text});
}

void SettingsTable::print() const {
    std::size_t nameWidth = 0, typeWidth = 0;
    for (const Line& line : _lines) {
        if (line.isGroup || line.type.empty())
            continue;
        nameWidth = std::max(nameWidth, std::min(displayWidth(line.name), kWidestName));
        typeWidth = std::max(typeWidth, line.type.size());
    }
    const Colours colours = outputColours();
    bool isFirst = true;
    for (const Line& line : _lines) {
        if (!line.isGroup) {
            printKey(line, nameWidth + 2, typeWidth + 2);
            continue;
        }
        tool::print(isFirst ? "" : "\n");
        printLine(line.name, colours.bold, colours);
        isFirst = false;
    }
}

void SettingsTable::printKey(const Line& line, std::size_t nameWidth, std::size_t typeWidth) const {
    const Colours colours = outputColours();
    const char* colour = line.mark == '+' ? colours.green : line.mark == '-' ? colours.red : "";
    const std::string indent = line.mark == ' ' ? "  " : std::string("  ") + line.mark + " ";
    if (line.type.empty())
        return printLine(indent + line.name, colour, colours);
    const std::string begin = indent + padded(line.name, nameWidth) + padded(line.type, typeWidth);
    const std::string further = indent + std::string(displayWidth(begin) - indent.size(), ' ');
    for (std::size_t i = 0; i < line.values.size(); ++i)
        printLine((i == 0 ? begin : further) + line.values[i], colour, colours);
}

}  // namespace tav::tool
