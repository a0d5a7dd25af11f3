// SPDX-License-Identifier: MIT
// All three find the command among the words so far, since options and files may stand between its
// parts.
#include "tools/ula/Completion.h"

namespace tav::tool {

namespace {

using Text = std::string;

/// For a text between single quotes.
Text quoted(const Text& text, const char* quote) {
    Text result = "'";
    for (const char c : text)
        result += c == '\'' ? Text(quote) : Text(1, c);
    return result + "'";
}

Text quotedForShell(const Text& text) {
    return quoted(text, "'\\''");
}

Text wordsOf(const std::vector<Text>& words) {
    Text result;
    for (const Text& word : words)
        result += (result.empty() ? "" : " ") + word;
    return result;
}

std::vector<Text> namesOfCommands(const CommandDescription& command) {
    std::vector<Text> names;
    for (const CommandDescription& each : command.commands)
        names.push_back(each.name.substr(each.name.rfind(' ') + 1));
    return names;
}

std::vector<Text> namesOfOptions(const CommandDescription& command) {
    std::vector<Text> names;
    for (const OptionDescription& option : command.options)
        if (!option.isArgument)
            names.insert(names.end(), option.names.begin(), option.names.end());
    return names;
}

std::vector<Text> choicesOfArguments(const CommandDescription& command) {
    std::vector<Text> choices;
    for (const OptionDescription& option : command.options)
        if (option.isArgument)
            choices.insert(choices.end(), option.choices.begin(), option.choices.end());
    return choices;
}

/// The commands below the tool, as the patterns of a `case`.
Text patterns(const CommandDescription& tool) {
    Text result;
    for (const CommandDescription* command : withAllBelow(tool))
        if (command != &tool)
            result += (result.empty() ? "" : "|") + ("\"" + command->name + "\"");
    return result;
}

/// The values that may stand behind an option, as branches of a `case`.
template <typename Branch>
Text valueBranches(const CommandDescription& tool, Branch branch) {
    Text text;
    for (const CommandDescription* command : withAllBelow(tool))
        for (const OptionDescription& option : command->options)
            if (!option.isArgument && !option.choices.empty())
                for (const Text& name : option.names)
                    text += branch("\"" + command->name + " " + name + "\"", option.choices);
    return text;
}

Text bashBranch(const CommandDescription& command) {
    std::vector<Text> words = namesOfCommands(command);
    const std::vector<Text> choices = choicesOfArguments(command);
    words.insert(words.end(), choices.begin(), choices.end());
    return "        \"" + command.name +
           "\")\n            words=" + quotedForShell(wordsOf(words)) +
           "\n            options=" + quotedForShell(wordsOf(namesOfOptions(command))) +
           "\n            ;;\n";
}

Text bashCompletion(const CommandDescription& tool) {
    Text text =
        "# Completes ula in bash; from ula " ULA_VERSION ".\n_ula() {\n"
        "    local current=${COMP_WORDS[COMP_CWORD]} command=ula words= options= values= i\n"
        "    for ((i = 1; i < COMP_CWORD; ++i)); do\n"
        "        case \"$command ${COMP_WORDS[i]}\" in\n        " +
        patterns(tool) +
        ") command=\"$command ${COMP_WORDS[i]}\" ;;\n        esac\n    done\n"
        "    case \"$command\" in\n";
    for (const CommandDescription* command : withAllBelow(tool))
        text += bashBranch(*command);
    text += "    esac\n    case \"$command ${COMP_WORDS[COMP_CWORD - 1]}\" in\n";
    text += valueBranches(tool, [](const Text& pattern, const std::vector<Text>& values) {
        return "        " + pattern + ") values=" + quotedForShell(wordsOf(values)) + " ;;\n";
    });
    return text + "    esac\n"
                  "    [[ $current != -* ]] || words=$options\n"
                  "    mapfile -t COMPREPLY < <(compgen -W \"${values:-$words}\" -- \"$current\")\n"
                  "}\n"
                  "complete -o default -F _ula ula\n";
}

/// "name:what it does", a colon in the name escaped.
Text zshEntry(const Text& name, const Text& text) {
    return "            " + quotedForShell(name + ":" + text) + "\n";
}

Text zshBranch(const CommandDescription& command) {
    Text text = "        (\"" + command.name + "\")\n        commands=(\n";
    const std::vector<Text> names = namesOfCommands(command);
    for (std::size_t i = 0; i < names.size(); ++i)
        text += zshEntry(names[i], command.commands[i].text);
    for (const Text& choice : choicesOfArguments(command))
        text += zshEntry(choice, "");
    text += "        )\n        options=(\n";
    for (const OptionDescription& option : command.options)
        if (!option.isArgument)
            for (const Text& name : option.names)
                text += zshEntry(name, option.text);
    return text + "        )\n        ;;\n";
}

Text zshCompletion(const CommandDescription& tool) {
    Text text = "#compdef ula\n# Completes ula in zsh; from ula " ULA_VERSION ".\n"
                "_ula() {\n    local command=ula word\n    local -a commands options values\n"
                "    for word in \"${(@)words[2,CURRENT-1]}\"; do\n"
                "        case \"$command $word\" in\n        (" +
                patterns(tool) +
                ") command=\"$command $word\" ;;\n        esac\n    done\n"
                "    case \"$command\" in\n";
    for (const CommandDescription* command : withAllBelow(tool))
        text += zshBranch(*command);
    text += "    esac\n    case \"$command ${words[CURRENT-1]}\" in\n";
    text += valueBranches(tool, [](const Text& pattern, const std::vector<Text>& values) {
        return "        (" + pattern + ") values=(" + wordsOf(values) + ") ;;\n";
    });
    return text +
           "    esac\n"
           "    if (( $#values )); then\n        compadd -a values\n"
           "    elif [[ $PREFIX == -* ]]; then\n        _describe -o option options\n"
           "    else\n        (( $#commands )) && _describe command commands\n        _files\n"
           "    fi\n}\n_ula \"$@\"\n";
}

Text quotedForFish(const Text& text) {
    return quoted(text, "\\'");
}

Text fishOption(const Text& condition, const OptionDescription& option) {
    Text line = condition;
    for (const Text& name : option.names)
        line += name.starts_with("--") ? " -l " + name.substr(2) : " -s " + name.substr(1);
    if (!option.choices.empty())
        line += " -x -a " + quotedForFish(wordsOf(option.choices));
    else if (!option.value.empty())
        line += " -r";
    return line + " -d " + quotedForFish(option.text) + "\n";
}

Text fishLines(const CommandDescription& command) {
    const Text condition = "complete -c ula -n 'test (__ula_command) = \"" + command.name + "\"'";
    const std::vector<Text> names = namesOfCommands(command);
    Text text;
    for (std::size_t i = 0; i < names.size(); ++i)
        text += condition + " -f -a " + names[i] + " -d " +
                quotedForFish(command.commands[i].text) + "\n";
    for (const Text& choice : choicesOfArguments(command))
        text += condition + " -f -a " + choice + "\n";
    for (const OptionDescription& option : command.options)
        if (!option.isArgument)
            text += fishOption(condition, option);
    return text;
}

Text fishCompletion(const CommandDescription& tool) {
    Text known;
    for (const CommandDescription* command : withAllBelow(tool))
        known += " \"" + command->name + "\"";
    Text text = "# Completes ula in fish; from ula " ULA_VERSION ".\n"
                "function __ula_command\n    set -l known" +
                known +
                "\n    set -l command ula\n    for word in (commandline -opc)[2..-1]\n"
                "        if contains -- \"$command $word\" $known\n"
                "            set command \"$command $word\"\n        end\n    end\n"
                "    echo $command\nend\n";
    for (const CommandDescription* command : withAllBelow(tool))
        text += fishLines(*command);
    return text;
}

}  // namespace

std::string completion(const CommandDescription& tool, Shell shell) {
    switch (shell) {
    case Shell::Bash:
        return bashCompletion(tool);
    case Shell::Fish:
        return fishCompletion(tool);
    case Shell::Zsh:
        break;
    }
    return zshCompletion(tool);
}

}  // namespace tav::tool
