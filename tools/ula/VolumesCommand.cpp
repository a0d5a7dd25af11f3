// SPDX-License-Identifier: MIT
#include "tools/ula/VolumesCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

#include <CLI/CLI.hpp>
#include <CoreServices/MountLookup.h>
#include <CoreServices/Volumes.h>
#include <cerrno>
#include <cstring>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace coreservices;

constexpr const char* kHelp = translatable(R"(Examples:
  ula volumes                 what /Volumes shows, and what is missing there
  sudo ula volumes --mend     makes missing links and removes stale ones
  ula volumes --json          the same for programs

Only links are ever made or removed. Exit codes: 0 done; 4 a change was not possible.)");

struct Options {
    std::string folder = "/Volumes";
    bool mend = false;
    bool asJson = false;
};

/// What describe() says of a state.
constexpr const char* kStates[] = {
    translatable("start-up disk"), translatable("mount point"),  translatable("link"),
    translatable("missing"),       translatable("stale link"),   translatable("surplus link"),
    translatable("foreign link"),  translatable("plain folder"), translatable("foreign entry")};

void printList(const std::vector<VolumeEntry>& entries) {
    const auto nameOf = [](const VolumeEntry& entry) { return displayText(entry.name); };
    const std::size_t nameWidth = widestOf(entries, nameOf) + 2;
    const std::size_t stateWidth = widestOf(kStates, [](auto state) { return translated(state); });
    for (const VolumeEntry& entry : entries) {
        std::string line = padded(nameOf(entry), nameWidth);
        const std::string state = translated(describe(entry.state));
        line += entry.target.empty() ? state
                                     : padded(state, stateWidth + 3) + displayText(entry.target);
        print(line + "\n");
    }
}

void printAsJson(const std::vector<VolumeEntry>& entries) {
    Json list = Json::array();
    for (const VolumeEntry& entry : entries)
        list.push_back(
            {{"name", entry.name}, {"state", describe(entry.state)}, {"target", entry.target}});
    printJson("volumes", std::move(list));
}

const char* describe(VolumesChange::Kind kind) {
    switch (kind) {
    case VolumesChange::Kind::MadeFolder:
        return translatable("made");
    case VolumesChange::Kind::MadeLink:
        return translatable("linked");
    default:
        return translatable("removed");
    }
}

void mend(const Volumes& volumes, const std::vector<Mount>& mounts) {
    for (const VolumesChange& change : volumes.mend(mounts)) {
        if (change.error != 0)
            throw CommandError{
                ExitCannotWrite, change.path + ": " + std::strerror(change.error),
                change.error == EACCES || change.error == EPERM
                    ? translated("run it as root: %1", std::string("sudo ula volumes --mend"))
                    : translated("the rest is as it was; see the folder for what "
                                 "stands there")};
        const std::string target = change.target.empty() ? "" : " -> " + displayText(change.target);
        print(translated(describe(change.kind)) + " " + displayText(change.path) + target + "\n");
    }
}

ExitCode run(const Options& options) {
    const Volumes volumes(options.folder);
    const MountList mounts = currentMounts();
    if (options.mend)
        mend(volumes, *mounts);
    else if (options.asJson)
        printAsJson(volumes.list(*mounts));
    else
        printList(volumes.list(*mounts));
    return ExitOk;
}

}  // namespace

void addVolumesCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const volumes = program.add_subcommand(
        "volumes",
        translated("Show or mend the names of the start-up disk and of mounted volumes"));
    CLI::Option* const mend = volumes->add_flag(
        "--mend", options->mend, translated("Make missing links, remove stale ones"));
    volumes->add_flag("--json", options->asJson, translated("As JSON"))->excludes(mend);
    volumes
        ->add_option("--folder", options->folder,
                     translated("Another folder than /Volumes, absolute"))
        ->check([](const std::string& path) {
            return !path.empty() && path[0] == '/' ? ""
                                                   : translated("%1 does not begin with /", path);
        });
    volumes->callback([options, &result] { result = run(*options); });
    volumes->footer(translated(kHelp));
}

}  // namespace tav::tool
