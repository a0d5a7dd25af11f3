// SPDX-License-Identifier: MIT
#include "tools/ula/VolumesCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"

#include <CLI/CLI.hpp>
#include <CoreServices/MountLookup.h>
#include <CoreServices/Volumes.h>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace coreservices;
using Json = nlohmann::ordered_json;

constexpr const char* kHelp = R"(Examples:
  ula volumes                 what /Volumes shows, and what is missing there
  sudo ula volumes --mend     makes missing links and removes stale ones
  ula volumes --json          the same for programs

Only links are ever made or removed. Exit codes: 0 done; 4 a change was not possible.)";

struct Options {
    std::string folder = "/Volumes";
    bool mend = false;
    bool asJson = false;
};

void printList(const std::vector<VolumeEntry>& entries) {
    std::size_t width = 0;
    for (const VolumeEntry& entry : entries)
        width = std::max(width, displayWidth(displayText(entry.name)));
    for (const VolumeEntry& entry : entries) {
        std::string line = padded(displayText(entry.name), width + 2);
        line += entry.target.empty()
                    ? describe(entry.state)
                    : padded(describe(entry.state), 16) + displayText(entry.target);
        print(line + "\n");
    }
}

/// Names come from disks and need not be UTF-8: what is not is shown as an escape.
void printJson(const std::vector<VolumeEntry>& entries) {
    Json list = Json::array();
    for (const VolumeEntry& entry : entries)
        list.push_back({{"name", displayText(entry.name)},
                        {"state", describe(entry.state)},
                        {"target", displayText(entry.target)}});
    print(list.dump(2) + "\n");
}

const char* describe(VolumesChange::Kind kind) {
    switch (kind) {
    case VolumesChange::Kind::MadeFolder:
        return "made";
    case VolumesChange::Kind::MadeLink:
        return "linked";
    default:
        return "removed";
    }
}

void mend(const Volumes& volumes, const std::vector<Mount>& mounts) {
    for (const VolumesChange& change : volumes.mend(mounts)) {
        if (change.error != 0)
            throw CommandError{ExitCannotWrite, change.path + ": " + std::strerror(change.error),
                               change.error == EACCES || change.error == EPERM
                                   ? "run it as root: sudo ula volumes --mend"
                                   : "the rest is as it was; see the folder for what stands there"};
        const std::string target = change.target.empty() ? "" : " -> " + displayText(change.target);
        print(describe(change.kind) + (" " + displayText(change.path)) + target + "\n");
    }
}

ExitCode run(const Options& options) {
    const Volumes volumes(options.folder);
    const std::vector<Mount> mounts = reachableMounts(parseMountInfo(readMountInfo()));
    if (options.mend)
        mend(volumes, mounts);
    else if (options.asJson)
        printJson(volumes.list(mounts));
    else
        printList(volumes.list(mounts));
    return ExitOk;
}

}  // namespace

void addVolumesCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const volumes = program.add_subcommand(
        "volumes", "Show or mend the names of the start-up disk and of mounted volumes");
    CLI::Option* const mend =
        volumes->add_flag("--mend", options->mend, "Make missing links, remove stale ones");
    volumes->add_flag("--json", options->asJson, "As JSON")->excludes(mend);
    volumes->add_option("--folder", options->folder, "Another folder than /Volumes, absolute")
        ->check([](const std::string& path) {
            return !path.empty() && path[0] == '/' ? "" : path + " does not begin with /";
        });
    volumes->callback([options, &result] { result = run(*options); });
    volumes->footer(kHelp);
}

}  // namespace tav::tool
