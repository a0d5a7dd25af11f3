// SPDX-License-Identifier: MIT
#include "tools/ula/RunningCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/TextTable.h"
#include "tools/ula/Translation.h"

#include <ula/UniqueAppInstance.h>

#include <CLI/CLI.hpp>
#include <memory>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace tav::tool {

namespace {

using ula::RunningApplicationInfo;

constexpr const char* kHelp = translatable(R"(Examples:
  ula running                        your running applications, in the order of their start
  ula running org.gnome.Nautilus     those of this name or identifier
  ula running --json                 for programs

Exit codes: 0 done; 1 no application of this name or identifier runs.)");

struct Options {
    std::string wanted;
    bool asJson = false;
};

void printText(const std::vector<RunningApplicationInfo>& applications) {
    std::vector<TableRow> rows = {
        {translated("PROCESS"), translated("NAME"), translated("IDENTIFIER"), translated("PATH")}};
    for (const RunningApplicationInfo& each : applications)
        rows.push_back({std::to_string(each.processIdentifier), displayText(each.name),
                        displayText(each.bundleIdentifier), displayText(each.path)});
    printTable(rows);
}

void printAsJson(const std::vector<RunningApplicationInfo>& applications) {
    Json list = Json::array();
    for (const RunningApplicationInfo& each : applications)
        list.push_back({{"process", each.processIdentifier},
                        {"name", each.name},
                        {"identifier", each.bundleIdentifier},
                        {"path", each.path}});
    printJson("applications", std::move(list));
}

ExitCode run(const Options& options) {
    std::vector<RunningApplicationInfo> applications = ula::runningApplications();
    // This tool, which lists itself as any program does.
    std::erase_if(applications, [&](const RunningApplicationInfo& each) {
        return each.processIdentifier == getpid() ||
               (!options.wanted.empty() && each.name != options.wanted &&
                each.bundleIdentifier != options.wanted);
    });
    options.asJson ? printAsJson(applications) : printText(applications);
    return options.wanted.empty() || !applications.empty() ? ExitOk : ExitDiffers;
}

}  // namespace

void addRunningCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const running =
        program.add_subcommand("running", translated("List your running applications"));
    running->add_option("NAME", options->wanted,
                        translated("Only those of this name or identifier"));
    running->add_flag("--json", options->asJson, translated("As JSON"));
    running->callback([options, &result] { result = run(*options); });
    running->footer(translated(kHelp));
}

}  // namespace tav::tool
