// SPDX-License-Identifier: MIT
#include "tools/ula/ArgumentProtection.h"

#include <CLI/CLI.hpp>

namespace tav::tool {

namespace {

constexpr char kMark = '\1';

bool beginsLikeAList(std::string_view text) {
    return text.starts_with('[') || text.starts_with('{');
}

bool isOdd(std::string_view argument) {
    const std::size_t equals = argument.find('=');
    const bool hasOption = argument.starts_with("--") && equals != std::string_view::npos;
    return beginsLikeAList(hasOption ? argument.substr(equals + 1) : argument);
}

std::string unprotectArgument(const std::string& argument) {
    const bool isMarked = isOdd(argument) && argument.back() == kMark;
    return isMarked ? argument.substr(0, argument.size() - 1) : argument;
}

}  // namespace

std::string protectArgument(const std::string& argument) {
    return isOdd(argument) ? argument + kMark : argument;
}

void unprotectOptions(CLI::App& command) {
    for (CLI::Option* const option : command.get_options())
        option->transform(&unprotectArgument);
    for (CLI::App* const each : command.get_subcommands([](CLI::App*) { return true; }))
        unprotectOptions(*each);
}

std::string unprotectMessage(std::string message) {
    std::erase(message, kMark);
    return message;
}

}  // namespace tav::tool
