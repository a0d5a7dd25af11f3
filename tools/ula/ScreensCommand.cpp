// SPDX-License-Identifier: MIT
#include "tools/ula/ScreensCommand.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/ScreenPicture.h"
#include "tools/ula/TextTable.h"
#include "tools/ula/Translation.h"

#include <ula/Screen.h>
#include <ula/foundation/filesystem/DurableFile.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

using ula::Screen;
using ula::ScreenDetails;
using Rectangle = math::GenRect<int>;

constexpr const char* kHelp = translatable(R"(Examples:
  ula screens                    attached displays, their sizes and what panels leave free
  ula screens --json             the same for programs
  ula screens --draw desk.png    a picture of how they stand to each other

The lower left corner of the primary display is 0, 0; y grows downwards.
Exit codes: 0 done; 1 there is no display; 4 the picture cannot be written.)");

struct Options {
    std::string picture;
    bool asJson = false;
};

std::string numberText(double value, const char* unit) {
    char text[48];
    std::snprintf(text, sizeof text, "%.4g%s", value, unit);
    return text;
}

std::string sizeText(const Rectangle& area) {
    return std::to_string(area.width()) + " x " + std::to_string(area.height());
}

std::string placeText(const Rectangle& area) {
    return std::to_string(area.left) + ", " + std::to_string(area.top);
}

TableRow rowOf(const Screen& screen) {
    const ScreenDetails details = screen.details();
    return {displayText(details.outputName) +
                (screen.isPrimary ? " (" + translated("primary") + ")" : ""),
            sizeText(screen.bounds),
            placeText(screen.bounds),
            translated("%1 from %2", sizeText(screen.workingArea), placeText(screen.workingArea)),
            std::to_string(screen.bitsPerPixel),
            details.refreshRate > 0 ? numberText(details.refreshRate, " Hz")
                                    : translated("unknown"),
            numberText(details.scaleFactor, "")};
}

Json jsonOf(const Rectangle& area) {
    return {{"left", area.left}, {"top", area.top}, {"right", area.right}, {"bottom", area.bottom}};
}

Json jsonOf(const Screen& screen) {
    const ScreenDetails details = screen.details();
    return {{"name", details.outputName},
            {"id", screen.displayID()},
            {"primary", screen.isPrimary},
            {"bounds", jsonOf(screen.bounds)},
            {"workingArea", jsonOf(screen.workingArea)},
            {"bitsPerPixel", screen.bitsPerPixel},
            {"refreshRate", details.refreshRate > 0 ? Json(details.refreshRate) : Json()},
            {"scale", details.scaleFactor}};
}

void printScreens(const std::vector<Screen>& screens, bool asJson) {
    if (asJson) {
        Json list = Json::array();
        for (const Screen& screen : screens)
            list.push_back(jsonOf(screen));
        printJson("screens", std::move(list));
        return;
    }
    std::vector<TableRow> rows = {{translated("NAME"), translated("SIZE"), translated("FROM"),
                                   translated("USABLE"), translated("BITS"), translated("RATE"),
                                   translated("SCALE")}};
    for (const Screen& screen : screens)
        rows.push_back(rowOf(screen));
    printTable(rows);
}

void savePicture(const std::string& path, const std::vector<Screen>& screens) {
    std::string error;
    const std::string png = pngOf(drawScreens(screens));
    if (!filesystem::replaceFileDurably(path.c_str(), png, {}, &error))
        throw CommandError{ExitCannotWrite, error,
                           translated("choose another place with --draw FILE.png")};
}

ExitCode run(const Options& options) {
    const std::vector<Screen> screens = Screen::getAllScreens();
    if (screens.empty()) {
        if (options.asJson)
            printJson("screens", Json::array());
        throw CommandError{ExitDiffers, translated("there is no display"),
                           translated("DISPLAY names the display server, as in: DISPLAY=:0 ula "
                                      "screens")};
    }
    if (!options.picture.empty())
        savePicture(options.picture, screens);
    if (options.picture.empty() || options.asJson)
        printScreens(screens, options.asJson);
    return ExitOk;
}

}  // namespace

void addScreensCommand(CLI::App& program, ExitCode& result) {
    const auto options = std::make_shared<Options>();
    CLI::App* const screens =
        program.add_subcommand("screens", translated("List or draw the attached displays"));
    screens->add_flag("--json", options->asJson, translated("As JSON"));
    screens->add_option("--draw", options->picture, translated("Draws them into this PNG file"))
        ->type_name("FILE.png");
    screens->callback([options, &result] { result = run(*options); });
    screens->footer(translated(kHelp));
}

}  // namespace tav::tool
