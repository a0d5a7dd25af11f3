// SPDX-License-Identifier: MIT
#include "RootGuards.h"

#include <algorithm>
#include <climits>
#include <deque>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fsevents {

namespace {

constexpr uint32_t kComesOrGoes = IN_CREATE | IN_DELETE | IN_MOVE;
constexpr uint32_t kIsMoved = IN_MOVE_SELF | IN_DELETE_SELF;
constexpr uint32_t kIsWritten = IN_MODIFY | IN_ATTRIB;
constexpr int kMostLinks = 40;

// Where a path leads, one name after the other.
class Way {
public:
    explicit Way(const std::string& path) { prepend(path); }

    bool isAtEnd() const { return _rest.empty(); }
    const std::string& folder() const { return _folder; }

    std::string nextName() {
        std::string name = _rest.front();
        _rest.pop_front();
        return name;
    }

    void enter(const std::string& folder) { _folder = folder; }

    // False when links lead round in circles.
    bool follow(const std::string& link) {
        char target[PATH_MAX];
        const ssize_t length = readlink(link.c_str(), target, sizeof target);
        if (length <= 0 || ++_links > kMostLinks)
            return false;
        if (target[0] == '/')
            _folder = "/";
        prepend(std::string(target, static_cast<std::size_t>(length)));
        return true;
    }

private:
    void prepend(const std::string& path) {
        std::deque<std::string> names;
        for (std::size_t at = 0; at < path.size();) {
            const std::size_t end = std::min(path.find('/', at), path.size());
            if (end > at && path.compare(at, end - at, ".") != 0)
                names.push_back(path.substr(at, end - at));
            at = end + 1;
        }
        _rest.insert(_rest.begin(), names.begin(), names.end());
    }

    std::string _folder = "/";
    std::deque<std::string> _rest;
    int _links = 0;
};

}  // namespace

void RootGuards::arm(uint32_t tree, const std::string& path, KernelWatches& kernel) {
    Way way(path);
    while (!way.isAtEnd()) {
        const std::string name = way.nextName();
        const std::string item = (way.folder() == "/" ? "" : way.folder()) + "/" + name;
        struct stat facts {};
        const bool exists = lstat(item.c_str(), &facts) == 0;
        const bool isRoot = way.isAtEnd() && !(exists && S_ISLNK(facts.st_mode));
        // A folder on the way tells by itself when it is moved. Its parent would tell much else.
        if (exists && S_ISDIR(facts.st_mode) && !isRoot) {
            add(item, kIsMoved, {tree, "", false}, kernel);
            way.enter(item);
            continue;
        }
        const bool isFile = isRoot && exists && !S_ISDIR(facts.st_mode);
        add(way.folder(), isFile ? kComesOrGoes | kIsWritten : kComesOrGoes, {tree, name, isRoot},
            kernel);
        if (exists && S_ISLNK(facts.st_mode) && way.follow(item))
            continue;
        return;
    }
}

void RootGuards::add(const std::string& folder, uint32_t mask, Guard guard, KernelWatches& kernel) {
    const int watch = kernel.addPath(folder.c_str(), mask);
    if (watch >= 0)
        _guards.emplace(watch, std::move(guard));
}

std::vector<int> RootGuards::disarm(uint32_t tree) {
    std::vector<int> watches;
    for (auto guard = _guards.begin(); guard != _guards.end();) {
        if (guard->second.tree != tree) {
            ++guard;
            continue;
        }
        watches.push_back(guard->first);
        guard = _guards.erase(guard);
    }
    std::erase_if(watches, [this](int watch) { return uses(watch); });
    return watches;
}

RootGuards::Concern RootGuards::concern(const Guard& guard, const KernelEvent& event) {
    if (guard.name.empty())
        return (event.mask & kIsMoved) != 0 ? Concern::Way : Concern::None;
    if (event.name != guard.name)
        return Concern::None;
    if ((event.mask & kComesOrGoes) != 0)
        return Concern::Way;
    return guard.isRoot && (event.mask & kIsWritten) != 0 ? Concern::Content : Concern::None;
}

std::vector<std::pair<uint32_t, RootGuards::Concern>>
RootGuards::concernedBy(const KernelEvent& event) const {
    std::vector<std::pair<uint32_t, Concern>> concerned;
    const auto [begin, end] = _guards.equal_range(event.watch);
    for (auto guard = begin; guard != end; ++guard) {
        const Concern kind = concern(guard->second, event);
        if (kind != Concern::None)
            concerned.emplace_back(guard->second.tree, kind);
    }
    return concerned;
}

}  // namespace fsevents
