// SPDX-License-Identifier: MIT
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace tav::tool {

/// The headings of --help in the user's language. Words in capitals are names, and stay.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_group(std::string group, bool isPositional,
                           std::vector<const CLI::Option*> options) const override;
    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode mode) const override;
};

/// What the parser says of a wrong command line, in the user's language.
std::string translatedMessage(const CLI::ParseError& error);

}  // namespace tav::tool
