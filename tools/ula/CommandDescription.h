// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tav::tool {

struct OptionDescription {
    std::vector<std::string> names;    ///< "-r", "--recursive"; of an argument its one name, "FILE"
    std::string value;                 ///< what stands behind it, "TEXT"; empty for a flag
    std::vector<std::string> choices;  ///< the only values that there are; empty where all are
    std::string text;
    bool isArgument = false;  ///< given by its place
    bool isRequired = false;
    bool isRepeated = false;
};

/// What `--help` knows of a command, for other forms of help.
struct CommandDescription {
    std::string name;  ///< "ula secret add"
    std::string text;
    std::string more;  ///< examples and exit codes, as lines
    std::vector<OptionDescription> options;
    std::vector<CommandDescription> commands;

    bool takesArguments() const;
    /// One line, "ula secret add [OPTIONS] NAME".
    std::string synopsis() const;
};

/// A command with all below it. Hidden ones are left out.
CommandDescription describe(const CLI::App& command);
/// A command and all below it, each before what is below it.
std::vector<const CommandDescription*> withAllBelow(const CommandDescription& command);

}  // namespace tav::tool
