// SPDX-License-Identifier: MIT
#include "tools/ula/SystemCommand.h"

#include "tools/ula/ByteText.h"
#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"
#include "tools/ula/Terminal.h"
#include "tools/ula/Translation.h"

#include <ula/Environment.h>
#include <ula/SystemInformation.h>

#include <CLI/CLI.hpp>
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

constexpr const char* kHelp = translatable(R"(Examples:
  ula system             language, release, processors, graphics and memory
  ula system --json      the same for programs, sizes in bytes

In a container or a service that is limited, it also says how much of the machine
may be used.)");

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
    const std::string usable =
        facts.effectiveCount == processor.count
            ? ""
            : translated("%1 usable here", std::to_string(facts.effectiveCount));
    return joined({count + shown(processor.type), speed, shown(processor.architecture), usable});
}

std::string graphicsText(const VideoControllerInfo& graphics) {
    const std::string memory =
        graphics.videoMemory == 0
            ? ""
            : translated("%1 of its own memory", binaryByteText(graphics.videoMemory));
    return graphics.model.empty() ? translated("none known")
                                  : joined({shown(graphics.model), memory});
}

std::string displaysText(const std::vector<DisplayInfo>& displays) {
    std::vector<std::string> texts;
    for (const DisplayInfo& display : displays)
        texts.push_back(std::to_string(display.width) + " x " + std::to_string(display.height) +
                        (display.isPrimary ? " (" + translated("primary") + ")" : ""));
    return displays.empty() ? translated("none") : joined(texts);
}

std::string memoryText(const Facts& facts) {
    const bool isLimited = facts.effectiveMemory.first != facts.memory.first;
    const std::string usable = isLimited ? translated("%1 usable here, %2 of that available",
                                                      binaryByteText(facts.effectiveMemory.first),
                                                      binaryByteText(facts.effectiveMemory.second))
                                         : "";
    return joined({binaryByteText(facts.memory.first),
                   translated("%1 available with swap", binaryByteText(facts.memory.second)),
                   usable});
}

using Line = std::pair<std::string, std::string>;

void printLines(const std::vector<Line>& lines) {
    const Colours colours = outputColours();
    const std::size_t width = widestOf(lines, [](const Line& line) { return line.first; }) + 2;
    for (const auto& [name, text] : lines)
        print(colours.bold + padded(name, width) + colours.plain + text + "\n");
}

void printText(const Facts& facts) {
    printLines({
        {translated("Language"),
         displayText(facts.language) + " (" + displayText(facts.languageCode) + ")"},
        {translated("Country"),
         facts.countryCode.empty() ? translated("none") : displayText(facts.countryCode)},
        {translated("System"), facts.version},
        {translated("User"), displayText(facts.user)},
        {translated("Processors"), processorText(facts)},
        {translated("Graphics"), graphicsText(facts.graphics)},
        {translated("Displays"), displaysText(facts.displays)},
        {translated("Memory"), memoryText(facts)},
    });
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

void printAsJson(const Facts& facts) {
    Json json{
        {"language", facts.language},
        {"languageCode", facts.languageCode},
        {"preferredLanguage", facts.preferredLanguage},
        {"countryCode", facts.countryCode},
        {"systemVersion", facts.version},
        {"user", facts.user},
        {"processor",
         {{"type", facts.processor.type.toStdString()},
          {"architecture", facts.processor.architecture.toStdString()},
          {"speedMHz", facts.processor.speedMHz},
          {"count", facts.processor.count},
          {"usable", facts.effectiveCount}}},
        {"graphics",
         {{"model", facts.graphics.model.toStdString()}, {"memory", facts.graphics.videoMemory}}},
        {"displays", jsonOf(facts.displays)},
        {"memory",
         {{"physical", facts.memory.first},
          {"available", facts.memory.second},
          {"usable", facts.effectiveMemory.first},
          {"usableAvailable", facts.effectiveMemory.second}}}};
    printJson("system", std::move(json));
}

ExitCode run(bool asJson) {
    const Facts facts;
    asJson ? printAsJson(facts) : printText(facts);
    return ExitOk;
}

}  // namespace

void addSystemCommand(CLI::App& program, ExitCode& result) {
    const auto asJson = std::make_shared<bool>(false);
    CLI::App* const system = program.add_subcommand(
        "system", translated("Tell about the system, its user and the machine"));
    system->add_flag("--json", *asJson, translated("As JSON"));
    system->callback([asJson, &result] { result = run(*asJson); });
    system->footer(translated(kHelp));
}

}  // namespace tav::tool
