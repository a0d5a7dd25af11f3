// SPDX-License-Identifier: MIT
#include "tools/ula/DrivesCommand.h"

#include "tools/ula/ByteText.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TextTable.h"
#include "tools/ula/Translation.h"

#include <ula/Drive.h>

#include <CLI/CLI.hpp>
#include <CoreServices/MountLookup.h>
#include <CoreServices/Volumes.h>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::Drive;
using ula::DriveDetails;
using ula::DriveSpace;

constexpr const char* kHelp = translatable(R"(Examples:
  ula drives             the start-up disk and mounted volumes, how large and how full
  ula drives --json      the same for programs, sizes in bytes, with label, UUID and device

A share whose server does not answer is listed all the same, without its sizes.)");

const char* kindText(ula::DriveType type) {
    switch (type) {
    case ula::Fixed:
        return translatable("fixed");
    case ula::Network:
        return translatable("network");
    case ula::Optical:
        return translatable("optical");
    case ula::Virtual:
        return translatable("virtual");
    default:
        return translatable("removable");
    }
}

std::string nameOf(const Drive& drive) {
    const std::string& path = drive.properties().fullPath();
    const std::string& title = drive.properties().title();
    return title.empty() ? path : title;
}

TableRow rowOf(const Drive& drive) {
    const std::optional<DriveSpace> space = drive.space();
    const DriveDetails details = drive.details();
    std::string where = displayText(details.location);
    if (drive.properties().isFlagSet(ula::ReadOnly))
        where += " (" + translated("read-only") + ")";
    return {displayText(nameOf(drive)),
            translated(kindText(drive.type())),
            space ? decimalByteText(space->total) : translated("no answer"),
            space ? decimalByteText(space->free) : "",
            displayText(details.fileSystemType),
            where};
}

Json jsonOf(const Drive& drive) {
    const std::optional<DriveSpace> space = drive.space();
    const DriveDetails details = drive.details();
    return {{"name", nameOf(drive)},
            {"path", drive.properties().fullPath()},
            {"kind", kindText(drive.type())},
            {"size", space ? Json(space->total) : Json()},
            {"free", space ? Json(space->free) : Json()},
            {"fileSystem", details.fileSystemType},
            {"readOnly", drive.properties().isFlagSet(ula::ReadOnly)},
            {"mountedOn", details.location},
            {"label", details.label},
            {"uuid", details.uuid},
            {"device", details.deviceNode},
            {"url", drive.volumeURL()}};
}

/// Volumes are listed by their names in /Volumes: says which ones have none, and what helps.
void tellOfNameless() {
    const coreservices::MountList mounts = coreservices::currentMounts();
    std::string nameless;
    for (const coreservices::VolumeEntry& entry : coreservices::Volumes().list(*mounts))
        if (entry.state == coreservices::VolumeState::Missing && entry.target != "/")
            nameless += (nameless.empty() ? "" : ", ") + entry.target;
    if (nameless.empty())
        return;
    printError(translated("not listed, as without a name in /Volumes: %1", nameless),
               translated("'sudo ula volumes --mend' gives them names"));
}

ExitCode run(bool asJson) {
    const std::vector<Drive> drives = Drive::drives();
    if (asJson) {
        Json list = Json::array();
        for (const Drive& drive : drives)
            list.push_back(jsonOf(drive));
        printJson("drives", std::move(list));
        return ExitOk;
    }
    std::vector<TableRow> rows = {{translated("NAME"), translated("KIND"), translated("SIZE"),
                                   translated("FREE"), translated("FILE SYSTEM"),
                                   translated("MOUNTED ON")}};
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
        program.add_subcommand("drives", translated("List the start-up disk and mounted volumes"));
    drives->add_flag("--json", *asJson, translated("As JSON"));
    drives->callback([asJson, &result] { result = run(*asJson); });
    drives->footer(translated(kHelp));
}

}  // namespace tav::tool
