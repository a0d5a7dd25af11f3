// SPDX-License-Identifier: MIT
#include "tools/ula/WatchPrinter.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/JsonOutput.h"
#include "tools/ula/StandardOutput.h"

#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

constexpr std::size_t kEventWidth = 10;

}  // namespace

void WatchPrinter::printText(const Line& line) const {
    std::string text = padded(line.event, kEventWidth) + displayText(line.path);
    if (!line.newPath.empty())
        text += " -> " + displayText(line.newPath);
    if (line.isFolder.value_or(false))
        text += "/";
    if (!line.title.empty())
        text += "  \"" + displayText(line.title) + "\"";
    print(text + "\n");
}

void WatchPrinter::printJson(const Line& line) const {
    Json object{{"event", line.event}, {"path", line.path}};
    if (!line.newPath.empty())
        object["newPath"] = line.newPath;
    if (line.isFolder)
        object["folder"] = *line.isFolder;
    if (!line.title.empty())
        object["title"] = line.title;
    printJsonLine(object);
}

void WatchPrinter::tell(const Line& line) {
    const std::lock_guard lock(_mutex);
    if (_failure)
        return;
    try {
        _asJson ? printJson(line) : printText(line);
        finishOutput();
    } catch (const CommandError& error) {
        _failure = error;
        _onFailure();
    }
}

}  // namespace tav::tool
