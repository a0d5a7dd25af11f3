// SPDX-License-Identifier: MIT
#include "tools/ula/SystemCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"

#include <ula/Environment.h>
#include <ula/SystemInformation.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::CPUInfo;
using ula::DisplayInfo;
using ula::Environment;
using ula::FastString;
using ula::MemInfo;
using ula::SystemInformation;
using ula::VideoControllerInfo;
using Json = nlohmann::ordered_json;

constexpr const char* kHelp = R"(Examples:
  ula system             language, release, processors, graphics and memory
  ula system --json      the same for programs, sizes in bytes

In a container or a service that is limited, it also says how much of the machine
may be used.)";

constexpr std::size_t kNameWidth = 12;

struct Facts {
    std::string language = Environment::getOSLanguage();
    std::string languageCode = Environment::getOSLanguageISO3166();
    std::string preferredLanguage = Environment::getOSCountry();
    std::string countryCode = Environment::getOSCountryISO3166();
    std::string version = Environment::getOSVersion();
    std::string user = Environment::getUserName();
    CPUInfo processor = SystemInformation::getCPUInfo().front();
    VideoControllerInfo graphics = SystemInformation::getVideoControllerInfo().front();
    std::vector<DisplayInfo> displays = SystemInformation::getDisplayInfo();
    MemInfo memory = SystemInformation::getMemInfo();
    std::int64_t effectiveCount = SystemInformation::getEffectiveCPUCount();
    MemInfo effectiveMemory = SystemInformation::getEffectiveMemInfo();
};

/// "15.6 GiB", in the units in which memory is made.
std::string memoryText(std::uint64_t bytes) {
    constexpr const char* kUnits[] = {"bytes", "KiB", "MiB", "GiB", "TiB", "PiB", "EiB"};
    auto value = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; value >= 1023.95 && unit + 1 < std::size(kUnits); ++unit)
        value /= 1024;
    char text[32];
    std::snprintf(text, sizeof text, "%.*f %s", unit == 0 ? 0 : 1, value, kUnits[unit]);
    return text;
}

std::string shown(const FastString& text) {
    return displayText(text.view());
}

/// The parts with a comma between those that are not empty.
std::string joined(const std::vector<std::string>& parts) {
    std::string text;
    for (const std::string& part : parts)
        text += text.empty() || part.empty() ? part : ", " + part;
    return text;
}

std::string processorText(const Facts& facts) {
    const CPUInfo& processor = facts.processor;
    const std::string count = processor.count == 1 ? "" : std::to_string(processor.count) + " x ";
    const std::string speed =
        processor.speedMHz == 0 ? "" : std::to_string(processor.speedMHz) + " MHz";
    const std::string usable = facts.effectiveCount == processor.count
                                   ? ""
                                   : std::to_string(facts.effectiveCount) + " usable here";
    return joined({count + shown(processor.type), speed, shown(processor.architecture), usable});
}

std::string graphicsText(const VideoControllerInfo& graphics) {
    const std::string memory =
        graphics.videoMemory == 0 ? "" : memoryText(graphics.videoMemory) + " of its own memory";
    return graphics.model.empty() ? "none known" : joined({shown(graphics.model), memory});
}

std::string displaysText(const std::vector<DisplayInfo>& displays) {
    std::vector<std::string> texts;
    for (const DisplayInfo& display : displays)
        texts.push_back(std::to_string(display.width) + " x " + std::to_string(display.height) +
                        (display.isPrimary ? " (primary)" : ""));
    return displays.empty() ? "none" : joined(texts);
}

std::string memoryText(const Facts& facts) {
    const bool isLimited = facts.effectiveMemory.first != facts.memory.first;
    const std::string usable =
        isLimited ? memoryText(facts.effectiveMemory.first) + " usable here, " +
                        memoryText(facts.effectiveMemory.second) + " of that available"
                  : "";
    return joined({memoryText(facts.memory.first),
                   memoryText(facts.memory.second) + " available with swap", usable});
}

void printLine(const Colours& colours, const std::string& name, const std::string& text) {
    print(colours.bold + padded(name, kNameWidth) + colours.plain + text + "\n");
}

void printText(const Facts& facts) {
    const Colours colours = outputColours();
    printLine(colours, "Language",
              displayText(facts.language) + " (" + displayText(facts.languageCode) + ")");
    printLine(colours, "Country",
              facts.countryCode.empty() ? "none" : displayText(facts.countryCode));
    printLine(colours, "System", facts.version);
    printLine(colours, "User", displayText(facts.user));
    printLine(colours, "Processors", processorText(facts));
    printLine(colours, "Graphics", graphicsText(facts.graphics));
    printLine(colours, "Displays", displaysText(facts.displays));
    printLine(colours, "Memory", memoryText(facts));
}

Json jsonOf(const std::vector<DisplayInfo>& displays) {
    Json list = Json::array();
    for (const DisplayInfo& display : displays)
        list.push_back({{"width", display.width},
                        {"height", display.height},
                        {"bitsPerPixel", display.bitsPerPixel},
                        {"primary", display.isPrimary}});
    return list;
}

void printJson(const Facts& facts) {
    const Json json{
        {"language", displayText(facts.language)},
        {"languageCode", displayText(facts.languageCode)},
        {"preferredLanguage", displayText(facts.preferredLanguage)},
        {"countryCode", displayText(facts.countryCode)},
        {"systemVersion", facts.version},
        {"user", displayText(facts.user)},
        {"processor",
         {{"type", shown(facts.processor.type)},
          {"architecture", shown(facts.processor.architecture)},
          {"speedMHz", facts.processor.speedMHz},
          {"count", facts.processor.count},
          {"usable", facts.effectiveCount}}},
        {"graphics",
         {{"model", shown(facts.graphics.model)}, {"memory", facts.graphics.videoMemory}}},
        {"displays", jsonOf(facts.displays)},
        {"memory",
         {{"physical", facts.memory.first},
          {"available", facts.memory.second},
          {"usable", facts.effectiveMemory.first},
          {"usableAvailable", facts.effectiveMemory.second}}}};
    print(json.dump(2) + "\n");
}

ExitCode run(bool asJson) {
    const Facts facts;
    asJson ? printJson(facts) : printText(facts);
    return ExitOk;
}

}  // namespace

void addSystemCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const system =
        program.add_subcommand("system", "Tell about the system, its user and the machine");
    system->add_flag("--json", *asJson, "As JSON");
    system->callback([asJson, &result] { result = run(*asJson); });
    system->footer(kHelp);
}

}  // namespace tav::tool
