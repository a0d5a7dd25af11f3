// SPDX-License-Identifier: MIT
#include "tools/ula/CommandDescription.h"

#include <CLI/CLI.hpp>
#include <algorithm>

namespace tav::tool {

namespace {

std::vector<std::string> parts(const std::string& list) {
    std::vector<std::string> result;
    for (std::size_t begin = 0; begin <= list.size();) {
        const std::size_t end = std::min(list.find(',', begin), list.size());
        result.push_back(list.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

/// The checks of a value are part of its type's name: "TEXT:{service,file}".
void describeValue(const std::string& type, OptionDescription& option) {
    option.value = type.substr(0, type.find(':'));
    const std::size_t open = type.find('{'), close = type.find('}');
    if (open != std::string::npos && close != std::string::npos && open < close)
        option.choices = parts(type.substr(open + 1, close - open - 1));
}

OptionDescription describe(const CLI::Option& option) {
    OptionDescription result;
    result.isArgument = option.get_positional();
    if (result.isArgument)
        result.names.push_back(option.get_name(true));
    for (const std::string& name : option.get_snames())
        result.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames())
        result.names.push_back("--" + name);
    result.text = option.get_description();
    result.isRequired = option.get_required();
    result.isRepeated = option.get_items_expected_max() > 1;
    if (option.get_items_expected_max() > 0)
        describeValue(option.get_type_name(), result);
    return result;
}

std::string nameOf(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    return (parent == nullptr ? "" : nameOf(*parent) + " ") + command.get_name();
}

/// A verb shows its command's examples where it has none of its own.
std::string ownFooter(const CLI::App& command) {
    const CLI::App* const parent = command.get_parent();
    const bool isParents = parent != nullptr && parent->get_footer() == command.get_footer();
    return isParents ? "" : command.get_footer();
}

}  // namespace

bool CommandDescription::takesArguments() const {
    return std::any_of(options.begin(), options.end(),
                       [](const OptionDescription& option) { return option.isArgument; });
}

std::string CommandDescription::synopsis() const {
    std::string line = name + " [OPTIONS]";
    for (const OptionDescription& option : options) {
        if (!option.isArgument)
            continue;
        const std::string argument = option.names.front() + (option.isRepeated ? "..." : "");
        line += option.isRequired ? " " + argument : " [" + argument + "]";
    }
    return commands.empty() ? line : line + " COMMAND";
}

CommandDescription describe(const CLI::App& command) {
    CommandDescription result{
        nameOf(command), command.get_description(), ownFooter(command), {}, {}};
    for (const CLI::Option* option : command.get_options())
        if (!option->get_group().empty())
            result.options.push_back(describe(*option));
    const auto isShown = [](const CLI::App* each) { return !each->get_group().empty(); };
    for (const CLI::App* each : command.get_subcommands(isShown))
        result.commands.push_back(describe(*each));
    return result;
}

std::vector<const CommandDescription*> withAllBelow(const CommandDescription& command) {
    std::vector<const CommandDescription*> all = {&command};
    for (const CommandDescription& each : command.commands)
        for (const CommandDescription* below : withAllBelow(each))
            all.push_back(below);
    return all;
}

}  // namespace tav::tool
