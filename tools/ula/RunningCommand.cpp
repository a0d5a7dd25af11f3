// SPDX-License-Identifier: MIT
#include "tools/ula/RunningCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TextTable.h"

#include <ula/UniqueAppInstance.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace tav::tool {

namespace {

using ula::RunningApplicationInfo;
using Json = nlohmann::ordered_json;

constexpr const char* kHelp = R"(Examples:
  ula running                        your running applications, in the order of their start
  ula running org.gnome.Nautilus     those of this name or identifier
  ula running --json                 for programs

Exit codes: 0 done; 1 no application of this name or identifier runs.)";

struct Options {
    std::string wanted;
    bool asJson = false;
};

void printText(const std::vector<RunningApplicationInfo>& applications) {
    std::vector<TableRow> rows = {{"PROCESS", "NAME", "IDENTIFIER", "PATH"}};
    for (const RunningApplicationInfo& each : applications)
        rows.push_back({std::to_string(each.processIdentifier), displayText(each.name),
                        displayText(each.bundleIdentifier), displayText(each.path)});
    printTable(rows);
}

void printJson(const std::vector<RunningApplicationInfo>& applications) {
    Json list = Json::array();
    for (const RunningApplicationInfo& each : applications)
        list.push_back({{"process", each.processIdentifier},
                        {"name", displayText(each.name)},
                        {"identifier", displayText(each.bundleIdentifier)},
                        {"path", displayText(each.path)}});
    print(list.dump(2) + "\n");
}

ExitCode run(const Options& options) {
    std::vector<RunningApplicationInfo> applications = ula::runningApplications();
    // This tool, which lists itself as any program does.
    std::erase_if(applications, [&](const RunningApplicationInfo& each) {
        return each.processIdentifier == getpid() ||
               (!options.wanted.empty() && each.name != options.wanted &&
                each.bundleIdentifier != options.wanted);
    });
    options.asJson ? printJson(applications) : printText(applications);
    return options.wanted.empty() || !applications.empty() ? ExitOk : ExitDiffers;
}

}  // namespace

void addRunningCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const running = program.add_subcommand("running", "List your running applications");
    running->add_option("application", options->wanted, "Only those of this name or identifier");
    running->add_flag("--json", options->asJson, "As JSON");
    running->callback([options, &result] { result = run(*options); });
    running->footer(kHelp);
}

}  // namespace tav::tool
