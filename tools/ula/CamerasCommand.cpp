// SPDX-License-Identifier: MIT
#include "tools/ula/CamerasCommand.h"

#include "tools/ula/CameraChoice.h"
#include "tools/ula/CameraImport.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/TransferBar.h"

#include <CLI/CLI.hpp>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace ula;
using Json = nlohmann::ordered_json;

constexpr const char* kHelp = R"(Examples:
  ula cameras                          what is connected
  ula cameras files                    what is on the only device, or the one of --device
  ula cameras import Pictures          brings everything over that is not there yet
  ula cameras import Pictures --dates %Y/%Y-%m-%d --name IMG_0001.JPG
  ula cameras --network 192.168.1.20 files     a camera on the network (PTP/IP)

An import that was ended, by Ctrl-C or a pulled cable, is taken up by the same command. Nothing is
ever replaced. Exit codes: 0 done; 1 no such device, or ended by Ctrl-C; 3 not all could be read;
4 not all could be written.)";

struct Options {
    std::vector<std::string> addresses;
    std::string device;
    bool asJson = false;
    CameraImportOptions import;
};

std::string dateText(std::int64_t seconds) {
    const auto time = static_cast<std::time_t>(seconds);
    std::tm parts{};
    char text[32] = "";
    if (seconds == 0 || localtime_r(&time, &parts) == nullptr ||
        std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &parts) == 0)
        return "-";
    return text;
}

std::string pathOf(const ImportObject& object) {
    return object.folder.empty() ? object.name : object.folder + "/" + object.name;
}

ExitCode listDevices(const Options& options) {
    const std::vector<ImportDevice> devices = connectedCameras(options.addresses);
    Json list = Json::array();
    for (const ImportDevice& device : devices) {
        const char* const kind = device.isCard ? "card" : "camera";
        list.push_back({{"id", device.id}, {"name", displayText(device.name)}, {"kind", kind}});
        if (!options.asJson)
            print(padded(device.id, 8) + padded(kind, 8) + displayText(device.name) + "\n");
    }
    if (options.asJson)
        print(list.dump(2) + "\n");
    else if (devices.empty())
        chooseCamera(devices, {});
    return ExitOk;
}

void printFile(const ImportObject& object, bool asJson) {
    if (!asJson) {
        print(padded(byteText(object.size), 11) + padded(dateText(object.modified), 21) +
              displayText(pathOf(object)) + "\n");
        return;
    }
    const Json line = {{"number", object.number},
                       {"folder", displayText(object.folder)},
                       {"name", displayText(object.name)},
                       {"size", object.size},
                       {"modified", object.modified}};
    print(line.dump() + "\n");
}

/// As they come.
ExitCode listFiles(const Options& options) {
    const ImportDevice device = chooseCamera(connectedCameras(options.addresses), options.device);
    ImportSession session(device.id);
    session.list([&](const std::vector<ImportObject>& part) {
        for (const ImportObject& object : part)
            printFile(object, options.asJson);
        return true;
    });
    if (!session.error().empty())
        throw CommandError{ExitCannotRead, device.name + ": " + session.error()};
    return ExitOk;
}

ExitCode runImport(Options& options) {
    options.import.asJson = options.asJson;
    return importFrom(chooseCamera(connectedCameras(options.addresses), options.device),
                      options.import);
}

CLI::App* addVerb(CLI::App* cameras, const char* name, const char* description,
                  const std::shared_ptr<Options>& options) {
    CLI::App* const verb = cameras->add_subcommand(name, description);
    verb->add_flag("--json", options->asJson, "As JSON; of files an object a line");
    verb->add_option("--network", options->addresses, "The address of a camera on the network")
        ->allow_extra_args(false);
    return verb;
}

}  // namespace

void addCamerasCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const cameras = program.add_subcommand(
        "cameras", "List cameras and memory cards, and bring their pictures over");
    cameras->add_flag("--json", options->asJson, "As JSON");
    cameras->add_option("--network", options->addresses, "The address of a camera on the network")
        ->allow_extra_args(false);
    cameras->require_subcommand(0, 1);
    addVerb(cameras, "list", "What is connected", options);
    CLI::App* const files = addVerb(cameras, "files", "What is on a device", options);
    CLI::App* const import = addVerb(cameras, "import", "Bring files over into a folder", options);
    for (CLI::App* const verb : {files, import})
        verb->add_option("--device", options->device, "Its name or number");
    import->add_option("folder", options->import.folder, "Where to; made if need be")->required();
    import->add_option("--name", options->import.names, "Only files of this name; repeatable")
        ->allow_extra_args(false);
    import->add_option("--dates", options->import.options.dateFolders,
                       "Folders by shooting date: %Y, %m and %d");
    import->add_flag("--verify", options->import.options.verify, "Compare checksums afterwards");
    cameras->callback([options, files, import, &result] {
        if (files->parsed())
            result = listFiles(*options);
        else if (import->parsed())
            result = runImport(*options);
        else
            result = listDevices(*options);
    });
    cameras->footer(kHelp);
}

}  // namespace tav::tool
