// SPDX-License-Identifier: MIT
#include "tools/ula/CompletionCommand.h"

#include "tools/ula/Completion.h"
#include "tools/ula/ManualPage.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

#include <ula/foundation/filesystem/DurableFile.h>

#include <CLI/CLI.hpp>
#include <filesystem>
#include <map>
#include <memory>

namespace tav::tool {

namespace {

constexpr const char* kHelp = translatable(R"(Examples:
  source <(ula completion bash)                                  for this shell
  ula completion fish > ~/.config/fish/completions/ula.fish      for good
Installed packages bring it with them.)");

const std::map<std::string, Shell> kShells = {
    {"bash", Shell::Bash}, {"fish", Shell::Fish}, {"zsh", Shell::Zsh}};

void write(const std::string& path, const std::string& text) {
    std::string error;
    if (!filesystem::replaceFileDurably(path, text, {}, &error))
        throw CommandError{ExitCannotWrite, error};
}

ExitCode writeManuals(const CommandDescription& tool, const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    write(folder + "/ula.1", manualPage(tool));
    for (const CommandDescription& command : tool.commands)
        write(folder + "/" + manualPageName(command) + ".1", manualPage(command));
    return ExitOk;
}

}  // namespace

void addCompletionCommand(CLI::App& program, ExitCode& result) {
    const auto shell = std::make_shared<std::string>();
    CLI::App* const completer = program.add_subcommand(
        "completion", translated("Print what a shell needs to complete commands"));
    completer->add_option("SHELL", *shell, translated("The shell"))
        ->required()
        ->check(CLI::IsMember({"bash", "fish", "zsh"}));
    completer->callback([shell, &program, &result] {
        print(completion(describe(program), kShells.at(*shell)));
        result = ExitOk;
    });
    completer->footer(translated(kHelp));

    const auto folder = std::make_shared<std::string>();
    CLI::App* const manuals =
        program.add_subcommand("manuals", translated("Write the manual pages into a folder"));
    manuals->group("");
    manuals->add_option("FOLDER", *folder, translated("Made if need be"))->required();
    manuals->callback(
        [folder, &program, &result] { result = writeManuals(describe(program), *folder); });
}

}  // namespace tav::tool
