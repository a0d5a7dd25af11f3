// SPDX-License-Identifier: MIT
#include "tools/ula/CamerasCommand.h"

#include "tools/ula/ByteText.h"
#include "tools/ula/CameraChoice.h"
#include "tools/ula/CameraImport.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Translation.h"

#include <CLI/CLI.hpp>
#include <ctime>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using namespace ula;

constexpr const char* kHelp = translatable(R"(Examples:
  ula cameras                          what is connected
  ula cameras files                    what is on the only device, or the one of --device
  ula cameras import Pictures          brings everything over that is not there yet
  ula cameras import Pictures --dates %Y/%Y-%m-%d --name IMG_0001.JPG
  ula cameras --network 192.168.1.20 files     a camera on the network (PTP/IP)

An import that was ended, by Ctrl-C or a pulled cable, is taken up by the same command. Nothing is
ever replaced. Exit codes: 0 done; 1 no such device, or ended by Ctrl-C; 3 not all could be read;
4 not all could be written.)");

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
        const char* const kind = device.isCard ? translatable("card") : translatable("camera");
        list.push_back({{"id", device.id}, {"name", device.name}, {"kind", kind}});
        if (!options.asJson)
            print(padded(device.id, 8) + padded(translated(kind), 8) + displayText(device.name) +
                  "\n");
    }
    if (options.asJson)
        printJson("devices", std::move(list));
    if (devices.empty())
        chooseCamera(devices, {});  // for its message
    return ExitOk;
}

void printFile(const ImportObject& object, bool asJson) {
    if (!asJson) {
        print(padded(decimalByteText(object.size), 11) + padded(dateText(object.modified), 21) +
              displayText(pathOf(object)) + "\n");
        return;
    }
    printJsonLine({{"number", object.number},
                   {"folder", object.folder},
                   {"name", object.name},
                   {"size", object.size},
                   {"modified", object.modified}});
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
    CLI::App* const verb = cameras->add_subcommand(name, translated(description));
    verb->add_flag("--json", options->asJson, translated("As JSON; of files an object a line"));
    verb->add_option("--network", options->addresses,
                     translated("The address of a camera on the network"))
        ->allow_extra_args(false);
    return verb;
}

}  // namespace

void addCamerasCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const cameras = program.add_subcommand(
        "cameras", translated("List cameras and memory cards, and bring their pictures over"));
    cameras->add_flag("--json", options->asJson, translated("As JSON"));
    cameras
        ->add_option("--network", options->addresses,
                     translated("The address of a camera on the network"))
        ->allow_extra_args(false);
    cameras->footer(translated(kHelp));
    cameras->require_subcommand(0, 1);
    addVerb(cameras, "list", translatable("What is connected"), options);
    CLI::App* const files = addVerb(cameras, "files", translatable("What is on a device"), options);
    CLI::App* const import =
        addVerb(cameras, "import", translatable("Bring files over into a folder"), options);
    for (CLI::App* const verb : {files, import})
        verb->add_option("--device", options->device, translated("Its name or number"));
    import->add_option("FOLDER", options->import.folder, translated("Where to; made if need be"))
        ->required();
    import
        ->add_option("--name", options->import.names,
                     translated("Only files of this name; repeatable"))
        ->allow_extra_args(false);
    import->add_option("--dates", options->import.options.dateFolders,
                       translated("Folders by shooting date: %Y, %m and %d"));
    import->add_flag("--verify", options->import.options.verify,
                     translated("Compare checksums afterwards"));
    cameras->callback([options, files, import, &result] {
        if (files->parsed())
            result = listFiles(*options);
        else if (import->parsed())
            result = runImport(*options);
        else
            result = listDevices(*options);
    });
}

}  // namespace tav::tool
