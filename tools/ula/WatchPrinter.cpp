// SPDX-License-Identifier: MIT
#include "tools/ula/WatchPrinter.h"

#include "tools/ula/DisplayText.h"
#include "tools/ula/StandardOutput.h"

#include <nlohmann/json.hpp>

namespace tav::tool {

namespace {

constexpr std::size_t kEventWidth = 10;

}  // namespace

std::string WatchPrinter::text(const Line& line) const {
    std::string text = padded(line.event, kEventWidth) + displayText(line.path);
    if (!line.newPath.empty())
        text += " -> " + displayText(line.newPath);
    if (line.isFolder.value_or(false))
        text += "/";
    if (!line.title.empty())
        text += "  \"" + displayText(line.title) + "\"";
    return text + "\n";
}

std::string WatchPrinter::json(const Line& line) const {
    nlohmann::ordered_json object{{"event", line.event}, {"path", displayText(line.path)}};
    if (!line.newPath.empty())
        object["newPath"] = displayText(line.newPath);
    if (line.isFolder)
        object["folder"] = *line.isFolder;
    if (!line.title.empty())
        object["title"] = displayText(line.title);
    return object.dump() + "\n";
}

void WatchPrinter::tell(const Line& line) {
    const std::lock_guard lock(_mutex);
    if (_failure)
        return;
    try {
        print(_asJson ? json(line) : text(line));
        finishOutput();
    } catch (const CommandError& error) {
        _failure = error;
        _onFailure();
    }
}

}  // namespace tav::tool
