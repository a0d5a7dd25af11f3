// SPDX-License-Identifier: MIT
#include "tools/ula/DoctorCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"
#include "tools/ula/doctor/CamerasCheck.h"
#include "tools/ula/doctor/ClockCheck.h"
#include "tools/ula/doctor/DisplayCheck.h"
#include "tools/ula/doctor/Host.h"
#include "tools/ula/doctor/InotifyCheck.h"
#include "tools/ula/doctor/LocaleCheck.h"
#include "tools/ula/doctor/MountsCheck.h"
#include "tools/ula/doctor/RunChecks.h"
#include "tools/ula/doctor/SecretServiceCheck.h"
#include "tools/ula/doctor/SessionBusCheck.h"
#include "tools/ula/doctor/TrashCheck.h"
#include "tools/ula/doctor/VolumesCheck.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace doctor;

constexpr const char* kHelp = translatable(R"(Examples:
  ula doctor             a line for each check; what mends it stands behind the arrow
  ula doctor --json      the same for programs

Nothing is changed, and nothing is waited for longer than two seconds.
Exit codes: 0 all is well, but for warnings; 1 there is a problem.)");

constexpr std::chrono::milliseconds kPatience(2000);
constexpr std::size_t kIdWidth = 16;

std::vector<Check> allChecks() {
    return {displayCheck(), sessionBusCheck(), secretServiceCheck(), volumesCheck(), inotifyCheck(),
            trashCheck(),   camerasCheck(),    mountsCheck(),        localeCheck(),  clockCheck()};
}

const char* colourOf(CheckState state, const Colours& colours) {
    switch (state) {
    case CheckState::Ok:
        return colours.green;
    case CheckState::Warning:
        return colours.yellow;
    case CheckState::Problem:
        return colours.red;
    default:
        return colours.dim;
    }
}

std::size_t stateWidth() {
    constexpr CheckState kStates[] = {CheckState::Ok, CheckState::Warning, CheckState::Problem,
                                      CheckState::Unknown};
    return widestOf(kStates, [](CheckState state) { return translated(textOf(state)); }) + 2;
}

void printText(const std::vector<Check>& checks, const std::vector<Finding>& findings) {
    const Colours colours = outputColours();
    for (std::size_t i = 0; i < checks.size(); ++i) {
        const Finding& finding = findings[i];
        const std::string remedy = finding.remedy.empty() ? "" : " -> " + finding.remedy;
        print(colourOf(finding.state, colours) +
              padded(translated(textOf(finding.state)), stateWidth()) + colours.plain +
              padded(checks[i].id, kIdWidth) + displayText(finding.message + remedy) + "\n");
    }
}

void printAsJson(const std::vector<Check>& checks, const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (std::size_t i = 0; i < checks.size(); ++i)
        list.push_back({{"id", checks[i].id},
                        {"state", textOf(findings[i].state)},
                        {"message", findings[i].message},
                        {"remedy", findings[i].remedy}});
    printJson("checks", std::move(list));
}

ExitCode run(bool asJson) {
    const std::vector<Check> checks = allChecks();
    const std::vector<Finding> findings = runChecks(checks, Host::ofProcess(), kPatience);
    asJson ? printAsJson(checks, findings) : printText(checks, findings);
    const bool isWell = std::ranges::none_of(
        findings, [](const Finding& finding) { return finding.state == CheckState::Problem; });
    return isWell ? ExitOk : ExitDiffers;
}

}  // namespace

void addDoctorCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const doctor = program.add_subcommand(
        "doctor", translated("Check this computer, and say what is wrong and what mends it"));
    doctor->add_flag("--json", *asJson, translated("As JSON"));
    doctor->callback([asJson, &result] { result = run(*asJson); });
    doctor->footer(translated(kHelp));
}

}  // namespace tav::tool
