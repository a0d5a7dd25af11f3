// SPDX-License-Identifier: MIT
#include "AppKit/DesktopEntries.h"

#include <algorithm>

namespace appkit {

namespace {

constexpr std::string_view kBlanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

// A value's own escapes, which come before those of quoted words.
std::string unescaped(std::string_view value) {
    std::string text;
    for (size_t i = 0; i < value.size(); ++i) {
        if (value[i] != '\\' || i + 1 == value.size()) {
            text += value[i];
            continue;
        }
        const char escape = value[++i];
        text += escape == 's'   ? ' '
                : escape == 'n' ? '\n'
                : escape == 't' ? '\t'
                : escape == 'r' ? '\r'
                                : escape;
        // A backslash that belongs to a quoted word stays one.
        if (escape != 's' && escape != 'n' && escape != 't' && escape != 'r' && escape != '\\')
            text.insert(text.size() - 1, 1, '\\');
    }
    return text;
}

struct Reading {
    DesktopEntry entry;
    bool isApplication = false;
    bool isHidden = false;

    void take(std::string_view key, std::string_view value) {
        if (key == "Type")
            isApplication = value == "Application";
        else if (key == "Name")
            entry.name = unescaped(value);
        else if (key == "Exec")
            entry.command = wordsOfCommand(unescaped(value));
        else if (key == "Hidden")
            isHidden = value == "true";
        else if (key == "DBusActivatable")
            entry.isActivatable = value == "true";
    }
};

// Words of the form NAME=VALUE behind env are no program.
void dropEnvironment(std::vector<std::string>& words) {
    if (words.empty() || (words[0] != "env" && words[0] != "/usr/bin/env"))
        return;
    auto program = words.begin() + 1;
    while (program != words.end() && program->find('=') != std::string::npos)
        ++program;
    words.erase(words.begin(), program);
}

}  // namespace

std::vector<std::string> wordsOfCommand(std::string_view line) {
    std::vector<std::string> words;
    std::string word;
    bool isQuoted = false, isWord = false;
    for (size_t i = 0; i <= line.size(); ++i) {
        if (i == line.size() || (!isQuoted && kBlanks.find(line[i]) != std::string_view::npos)) {
            if (isWord && !(word.size() == 2 && word[0] == '%' && word[1] != '%'))
                words.push_back(word);
            word.clear();
            isWord = false;
            continue;
        }
        isWord = true;
        if (line[i] == '"')
            isQuoted = !isQuoted;
        else if (line[i] == '\\' && isQuoted && i + 1 < line.size())
            word += line[++i];
        else
            word += line[i];
    }
    return words;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text) {
    Reading reading;
    bool isInGroup = false;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) {
            // The groups behind are those of actions.
            if (isInGroup)
                break;
            isInGroup = line == "[Desktop Entry]";
        }
        const size_t equals = line.find('=');
        if (isInGroup && equals != std::string_view::npos && line[0] != '#')
            reading.take(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)));
    }
    dropEnvironment(reading.entry.command);
    if (!reading.isApplication || reading.isHidden || reading.entry.command.empty())
        return std::nullopt;
    return reading.entry;
}

}  // namespace appkit
