// SPDX-License-Identifier: MIT
#include "ula/src/Core/TreeEventReader.h"

#include <algorithm>
#include <utility>

namespace tav::ula {

namespace {

bool isMoveOnly(const ReportedChange& change) {
    return change.isRenamed && !change.isCreated && !change.isRemoved;
}

// The platform reports both ends of a move with numbers that follow each other.
bool areOneMove(const ReportedChange& from, const ReportedChange& to) {
    return isMoveOnly(from) && isMoveOnly(to) && from.id + 1 == to.id &&
           from.isFolder == to.isFolder;
}

bool isAtOrBelow(const std::string& path, const std::string& top) {
    return path.starts_with(top) &&
           (path.size() == top.size() || top == "/" || path[top.size()] == '/');
}

}  // namespace

TreeEventReader::TreeEventReader(std::string root, const std::vector<std::string>& ignore,
                                 Look look)
    : _root(std::move(root)), _ignore(ignore), _look(std::move(look)) {
}

bool TreeEventReader::isIgnored(const std::string& path) const {
    const std::size_t begin = _root == "/" ? 1 : _root.size() + 1;
    return path.size() > begin && _ignore.match(std::string_view(path).substr(begin));
}

std::vector<TreeEvent> TreeEventReader::readNext(const std::vector<ReportedChange>& changes,
                                                 std::size_t* index) {
    std::vector<TreeEvent> events;
    const ReportedChange& change = changes[(*index)++];
    forgetRescansBefore(change.id);
    if (change.isRootChanged) {
        readRoot(events);
    } else if (*index < changes.size() && areOneMove(change, changes[*index])) {
        readMove(change, changes[*index], events);
        ++*index;
    } else if (!isIgnored(change.path)) {
        readItem(change, events);
    }
    return events;
}

void TreeEventReader::didRescan(const std::string& path, std::uint64_t latestId) {
    _rescans.push_back({path, latestId});
}

void TreeEventReader::forgetRescansBefore(std::uint64_t id) {
    std::erase_if(_rescans, [&](const Rescan& rescan) { return rescan.latestId < id; });
}

bool TreeEventReader::isOutdated(const ReportedChange& change) const {
    return std::any_of(_rescans.begin(), _rescans.end(), [&](const Rescan& rescan) {
        return isAtOrBelow(change.path, rescan.path) || isAtOrBelow(rescan.path, change.path);
    });
}

// A single file that was replaced is the file that is meant. Of a folder nothing is known.
void TreeEventReader::readRoot(std::vector<TreeEvent>& events) const {
    const std::optional<bool> isFolder = _look(_root);
    if (!isFolder)
        events.push_back({TreeEventType::Removed, _root, "", false});
    else if (*isFolder)
        events.push_back({TreeEventType::RescanNeeded, _root, "", false});
    else
        events.push_back({TreeEventType::Changed, _root, "", false});
}

// What moves out of sight is removed, what moves into it created.
void TreeEventReader::readMove(const ReportedChange& from, const ReportedChange& to,
                               std::vector<TreeEvent>& events) const {
    const bool isFromSeen = !isIgnored(from.path);
    const bool isToSeen = !isIgnored(to.path);
    if (isOutdated(from) || isOutdated(to)) {
        for (const ReportedChange* end : {&from, &to})
            if (!isIgnored(end->path))
                lookAgain(*end, events);
    } else if (isFromSeen && isToSeen)
        events.push_back({TreeEventType::Moved, from.path, to.path, from.isFolder});
    else if (isFromSeen)
        events.push_back({TreeEventType::Removed, from.path, "", from.isFolder});
    else if (isToSeen)
        lookAgain(to, events);
}

void TreeEventReader::readItem(const ReportedChange& change, std::vector<TreeEvent>& events) const {
    if (change.mustScan)
        events.push_back({TreeEventType::RescanNeeded, change.path, "", false});
    else if (change.isRenamed || (change.isCreated && change.isRemoved) ||
             (isOutdated(change) && (change.isCreated || change.isRemoved)))
        lookAgain(change, events);
    else if (change.isRemoved)
        events.push_back({TreeEventType::Removed, change.path, "", change.isFolder});
    else if (change.isCreated)
        events.push_back({TreeEventType::Created, change.path, "", change.isFolder});
    else
        events.push_back({TreeEventType::Changed, change.path, "", change.isFolder});
}

// For what does not say what is there now, such as a single end of a move.
void TreeEventReader::lookAgain(const ReportedChange& change,
                                std::vector<TreeEvent>& events) const {
    const std::optional<bool> isFolder = _look(change.path);
    if (!isFolder)
        return events.push_back({TreeEventType::Removed, change.path, "", change.isFolder});
    events.push_back({TreeEventType::Created, change.path, "", *isFolder});
    if (*isFolder)
        events.push_back({TreeEventType::RescanNeeded, change.path, "", false});
}

}  // namespace tav::ula
