// SPDX-License-Identifier: MIT
#include "tools/ula/DrivesCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TextTable.h"

#include <ula/Drive.h>

#include <CLI/CLI.hpp>
#include <CoreServices/MountLookup.h>
#include <CoreServices/Volumes.h>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::Drive;
using ula::DriveDetails;
using ula::DriveSpace;
using Json = nlohmann::ordered_json;

constexpr const char* kHelp = R"(Examples:
  ula drives             the start-up disk and mounted volumes, how large and how full
  ula drives --json      the same for programs, sizes in bytes, with label, UUID and device

A share whose server does not answer is listed all the same, without its sizes.)";

const char* kindText(ula::DriveType type) {
    switch (type) {
    case ula::Fixed:
        return "fixed";
    case ula::Network:
        return "network";
    case ula::Optical:
        return "optical";
    case ula::Virtual:
        return "virtual";
    default:
        return "removable";
    }
}

/// "16.8 MB", in the units in which disks are sold.
std::string sizeText(std::uint64_t bytes) {
    constexpr const char* kUnits[] = {"bytes", "kB", "MB", "GB", "TB", "PB", "EB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; value >= 999.95 && unit + 1 < std::size(kUnits); ++unit)
        value /= 1000;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit == 0 ? 0 : 1, value, kUnits[unit]);
    return text;
}

std::string nameOf(const Drive& drive) {
    const std::string& path = drive.properties().fullPath();
    const std::string& title = drive.properties().title();
    return displayText(title.empty() ? path : title);
}

TableRow rowOf(const Drive& drive) {
    const std::optional<DriveSpace> space = drive.space();
    const DriveDetails details = drive.details();
    std::string where = displayText(details.location);
    if (drive.properties().isFlagSet(ula::ReadOnly))
        where += " (read-only)";
    return {nameOf(drive),
            kindText(drive.type()),
            space ? sizeText(space->total) : "no answer",
            space ? sizeText(space->free) : "",
            displayText(details.fileSystemType),
            where};
}

/// Names come from disks and need not be UTF-8: what is not is shown as an escape.
Json jsonOf(const Drive& drive) {
    const std::optional<DriveSpace> space = drive.space();
    const DriveDetails details = drive.details();
    return {{"name", nameOf(drive)},
            {"path", displayText(drive.properties().fullPath())},
            {"kind", kindText(drive.type())},
            {"size", space ? Json(space->total) : Json()},
            {"free", space ? Json(space->free) : Json()},
            {"fileSystem", displayText(details.fileSystemType)},
            {"readOnly", drive.properties().isFlagSet(ula::ReadOnly)},
            {"mountedOn", displayText(details.location)},
            {"label", displayText(details.label)},
            {"uuid", displayText(details.uuid)},
            {"device", displayText(details.deviceNode)},
            {"url", displayText(drive.volumeURL())}};
}

/// Volumes are listed by their names in /Volumes: says which ones have none, and what helps.
void tellOfNameless() {
    const coreservices::MountList mounts = coreservices::currentMounts();
    std::string nameless;
    for (const coreservices::VolumeEntry& entry : coreservices::Volumes().list(*mounts))
        if (entry.state == coreservices::VolumeState::Missing && entry.target != "/")
            nameless += (nameless.empty() ? "" : ", ") + displayText(entry.target);
    if (nameless.empty())
        return;
    std::fprintf(stderr,
                 "ula: not listed, as without a name in /Volumes: %s\n"
                 "     'sudo ula volumes --mend' gives them names\n",
                 nameless.c_str());
}

ExitCode run(bool asJson) {
    const std::vector<Drive> drives = Drive::drives();
    if (asJson) {
        Json list = Json::array();
        for (const Drive& drive : drives)
            list.push_back(jsonOf(drive));
        print(list.dump(2) + "\n");
        return ExitOk;
    }
    std::vector<TableRow> rows = {{"NAME", "KIND", "SIZE", "FREE", "FILE SYSTEM", "MOUNTED ON"}};
    for (const Drive& drive : drives)
        rows.push_back(rowOf(drive));
    printTable(rows, {2, 3});
    tellOfNameless();
    return ExitOk;
}

}  // namespace

void addDrivesCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const drives =
        program.add_subcommand("drives", "List the start-up disk and mounted volumes");
    drives->add_flag("--json", *asJson, "As JSON");
    drives->callback([asJson, &result] { result = run(*asJson); });
    drives->footer(kHelp);
}

}  // namespace tav::tool
