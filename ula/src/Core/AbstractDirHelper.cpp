// SPDX-License-Identifier: MIT
#include "ula/AbstractDirHelper.h"

#include "ula/foundation/debug/Assertion.h"

namespace tav::ula {

namespace {

constexpr std::size_t kShortestTrimmed = 4;

std::string withoutFinalSlash(const std::string& path) {
    if (path.size() < kShortestTrimmed || path.back() != '/')
        return path;
    return path.substr(0, path.size() - 1);
}

}  // namespace

AbstractDirHelper::AbstractDirHelper(const std::string& path) {
    _properties.setFullPath(withoutFinalSlash(path));
}

AbstractDirHelper::AbstractDirHelper(FileProperties properties)
    : _properties(std::move(properties)) {
}

AbstractDirHelper::~AbstractDirHelper() = default;

bool AbstractDirHelper::containsChildren(bool) const {
    debug::assertionFailed("src/Core/AbstractDirHelper", 29, "false");
    return false;
}

bool AbstractDirHelper::isRoot() const {
    return _properties.fullPath() == _properties.name();
}

bool AbstractDirHelper::childrenWithProgress(bool visibleFoldersOnly,
                                             const ListingProgress& progress,
                                             std::vector<AbstractDirHelper*>& found) {
    found = children(visibleFoldersOnly);
    return progress(found.size());
}

}  // namespace tav::ula
