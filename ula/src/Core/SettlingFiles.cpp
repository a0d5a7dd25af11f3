// SPDX-License-Identifier: MIT
#include "ula/src/Core/SettlingFiles.h"

#include <algorithm>

namespace tav::ula {

std::vector<TreeEvent> SettlingFiles::add(const std::vector<TreeEvent>& events, Time now) {
    if (_quiet.count() <= 0)
        return events;
    std::vector<TreeEvent> told;
    for (const TreeEvent& event : events) {
        const bool isWritten =
            event.type == TreeEventType::Created || event.type == TreeEventType::Changed;
        if (isWritten && !event.isFolder)
            hold(event, now);
        else if (event.type == TreeEventType::Moved)
            addMove(event, told);
        else if (event.type == TreeEventType::Removed)
            addRemoval(event, told);
        else
            told.push_back(event);
    }
    return told;
}

// What is new stays new until it was told once.
void SettlingFiles::hold(const TreeEvent& event, Time now) {
    Held& held = _held.try_emplace(event.path, Held{event.type, {}, {}}).first->second;
    held.state = _look(event.path);
    held.due = now + _quiet;
}

std::vector<std::string> SettlingFiles::heldAtOrBelow(const std::string& path) const {
    std::vector<std::string> paths;
    for (auto held = _held.lower_bound(path); held != _held.end(); ++held) {
        if (!held->first.starts_with(path))
            break;
        if (held->first.size() == path.size() || held->first[path.size()] == '/')
            paths.push_back(held->first);
    }
    return paths;
}

// A file nobody was told of yet is new at its new place. What was known under its old name, if it
// had taken that from another one, is gone.
void SettlingFiles::addMove(const TreeEvent& event, std::vector<TreeEvent>& events) {
    for (const std::string& path : heldAtOrBelow(event.newPath))
        _held.erase(path);
    const auto moved = _held.find(event.path);
    const bool isUntold = moved != _held.end() && moved->second.type == TreeEventType::Created;
    events.push_back(isUntold ? TreeEvent{TreeEventType::Removed, event.path, "", false} : event);
    for (const std::string& path : heldAtOrBelow(event.path)) {
        const auto node = _held.find(path);
        _held.insert_or_assign(event.newPath + path.substr(event.path.size()), node->second);
        _held.erase(path);
    }
}

void SettlingFiles::addRemoval(const TreeEvent& event, std::vector<TreeEvent>& events) {
    for (const std::string& path : heldAtOrBelow(event.path))
        _held.erase(path);
    events.push_back(event);
}

std::vector<TreeEvent> SettlingFiles::settled(Time now) {
    std::vector<TreeEvent> events;
    for (auto at = _held.begin(); at != _held.end();) {
        Held& held = at->second;
        if (held.due > now) {
            ++at;
            continue;
        }
        const State state = _look(at->first);
        if (state.exists && state != held.state) {
            held.state = state;
            held.due = now + _quiet;
            ++at;
            continue;
        }
        // What is gone was, or will be, told as removed.
        if (state.exists)
            events.push_back({held.type, at->first, "", false});
        at = _held.erase(at);
    }
    return events;
}

SettlingFiles::Time SettlingFiles::nextLook() const {
    return std::min_element(
               _held.begin(), _held.end(),
               [](const auto& a, const auto& b) { return a.second.due < b.second.due; })
        ->second.due;
}

}  // namespace tav::ula
