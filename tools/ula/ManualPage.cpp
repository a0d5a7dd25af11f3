// SPDX-License-Identifier: MIT
#include "tools/ula/ManualPage.h"

#include <algorithm>

namespace tav::tool {

namespace {

/// A line is text: no command of the macros', and its signs as they are typed.
std::string escaped(const std::string& text) {
    std::string result;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\''))
            result += "\\&";
        isLineStart = c == '\n';
        if (c == '\\')
            result += "\\e";
        else if (c == '-')
            result += "\\-";
        else
            result += c;
    }
    return result;
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) {
        return 'a' <= c && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
    });
    return text;
}

std::string section(const std::string& title) {
    return ".SH " + upperCase(title) + "\n";
}

std::string lines(const std::string& text) {
    return ".nf\n" + escaped(text) + "\n.fi\n";
}

std::string joined(const std::vector<std::string>& words, const char* between) {
    std::string result;
    for (const std::string& word : words)
        result += (result.empty() ? "" : between) + word;
    return result;
}

std::string optionText(const OptionDescription& option) {
    std::string text = ".TP\n\\fB" + escaped(joined(option.names, ", ")) + "\\fR";
    if (!option.choices.empty())
        text += " " + escaped(joined(option.choices, "|"));
    else if (!option.value.empty() && !option.isArgument)
        text += " \\fI" + escaped(option.value) + "\\fR";
    return text + "\n" + escaped(option.text) + "\n";
}

std::string optionsText(const CommandDescription& command) {
    std::string text;
    for (const bool isArgument : {true, false})
        for (const OptionDescription& option : command.options)
            if (option.isArgument == isArgument)
                text += optionText(option);
    return text;
}

std::string commandText(const CommandDescription& command) {
    std::string text = ".SS " + escaped(command.synopsis()) + "\n" + escaped(command.text) + ".\n" +
                       optionsText(command);
    return command.more.empty() ? text : text + ".PP\n" + lines(command.more);
}

std::string listOfCommands(const CommandDescription& tool) {
    std::string text;
    for (const CommandDescription& command : tool.commands)
        text += ".TP\n\\fB" + escaped(manualPageName(command)) + "\\fR(1)\n" +
                escaped(command.text) + "\n";
    return text;
}

}  // namespace

std::string manualPageName(const CommandDescription& command) {
    std::string name = command.name;
    std::replace(name.begin(), name.end(), ' ', '-');
    return name;
}

std::string manualPage(const CommandDescription& command) {
    const bool isTool = command.name.find(' ') == std::string::npos;
    const std::string name = manualPageName(command);
    std::string page = ".TH " + upperCase(name) + " 1 \"\" \"ula " ULA_VERSION "\" ula\n" +
                       section("name") + escaped(name) + " \\- " + escaped(command.text) + "\n" +
                       section("synopsis") + ".B " + escaped(command.synopsis()) + "\n" +
                       section("options") + optionsText(command);
    if (!command.commands.empty())
        page += section("commands");
    if (isTool)
        page += listOfCommands(command);
    else
        for (const CommandDescription* each : withAllBelow(command))
            if (each != &command)
                page += commandText(*each);
    if (!command.more.empty())
        page += section("examples") + lines(command.more);
    return isTool ? page : page + section("see also") + ".BR ula (1)\n";
}

}  // namespace tav::tool
