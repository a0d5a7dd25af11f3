// SPDX-License-Identifier: MIT
#include "examples/lighttable/StatusText.h"

#include <array>
#include <cstdio>

namespace lighttable {

namespace {

std::string counted(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " picture" : " pictures");
}

std::string sizeText(std::uint64_t bytes) {
    static constexpr std::array<const char*, 4> units = {"bytes", "kB", "MB", "GB"};
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    for (; size >= 1000 && unit + 1 < units.size(); ++unit)
        size /= 1000;
    std::array<char, 32> text = {};
    std::snprintf(text.data(), text.size(), unit > 0 && size < 10 ? "%.1f %s" : "%.0f %s", size,
                  units[unit]);
    return text.data();
}

}  // namespace

std::string statusText(const FolderContent& content, const PictureFile* selected) {
    switch (content.state) {
    case FolderState::Listing:
        return "Looking for pictures…";
    case FolderState::Missing:
        return "Not there";
    case FolderState::Unreadable:
        return "Cannot be read";
    case FolderState::Listed:
        break;
    }
    if (selected == nullptr)
        return content.pictures.empty() ? "No pictures" : counted(content.pictures.size());
    return selected->name + " · " + sizeText(selected->size) + " · " +
           counted(content.pictures.size());
}

std::string importText(const ImportOutcome& outcome) {
    std::string text = outcome.isCancelled ? "Import cancelled: " : "";
    text += counted(outcome.imported) + " imported";
    if (outcome.alreadyThere > 0)
        text += ", " + std::to_string(outcome.alreadyThere) + " were there already";
    if (outcome.failed > 0)
        text += ", " + std::to_string(outcome.failed) + " failed";
    return outcome.error.empty() ? text : text + " – " + outcome.error;
}

std::string importText(const ImportState& state) {
    return "Importing " + std::to_string(state.files) + " of " + counted(state.totalFiles) +
           (state.name.empty() ? "" : " · " + state.name);
}

}  // namespace lighttable
