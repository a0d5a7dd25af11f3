// SPDX-License-Identifier: MIT
#include "RootGuards.h"

#include "CoreServices/MostLinks.h"

#include <algorithm>
#include <cerrno>
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
// Whoever moves folders about for longer is told of by the guards that there are.
constexpr int kMostLooks = 100;

}  // namespace

// What has a path, to be compared with what has it later.
struct RootGuards::Item {
    mode_t type = 0;  // none where nothing is
    dev_t device = 0;
    ino_t number = 0;
    bool operator==(const Item&) const = default;

    static Item at(const std::string& path) {
        struct stat facts {};
        if (lstat(path.c_str(), &facts) != 0)
            return {};
        return {facts.st_mode & S_IFMT, facts.st_dev, facts.st_ino};
    }
    bool exists() const { return type != 0; }
    bool isFolder() const { return type == S_IFDIR; }
    bool isLink() const { return type == S_IFLNK; }
};

// Where a path leads, one name after the other.
class RootGuards::Way {
public:
    explicit Way(const std::string& path) { prepend(path); }

    bool isAtEnd() const { return _rest.empty(); }
    bool isAtLast() const { return _rest.size() == 1; }
    const std::string& folder() const { return _folder; }
    const std::string& name() const { return _rest.front(); }
    std::string item() const { return (_folder == "/" ? "" : _folder) + "/" + name(); }

    void enter() {
        _folder = item();
        _rest.pop_front();
    }

    // False when links lead round in circles.
    bool follow() {
        char target[PATH_MAX];
        const ssize_t length = readlink(item().c_str(), target, sizeof target);
        if (length <= 0 || ++_links > coreservices::kMostLinks)
            return false;
        _rest.pop_front();
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

// Each guard is set first and what it guards looked at once more then, so that nothing can change
// unnoticed in between.
void RootGuards::arm(uint32_t tree, const std::string& path, KernelWatches& kernel) {
    Way way(path);
    for (int looks = 0; !way.isAtEnd(); ++looks) {
        const Item item = Item::at(way.item());
        // A folder on the way tells by itself when it is moved. Its parent would tell much else.
        const bool isOnTheWay = item.isFolder() && !way.isAtLast();
        const bool isThere = isOnTheWay
                                 ? add(way.item(), kIsMoved, {tree, "", Kind::Directory}, kernel)
                                 : addEntry(tree, way, item, kernel);
        if ((!isThere || item != Item::at(way.item())) && looks < kMostLooks)
            continue;
        if (isOnTheWay)
            way.enter();
        else if (!item.isLink() || !way.follow())
            return;
    }
}

bool RootGuards::addEntry(uint32_t tree, const Way& way, const Item& item, KernelWatches& kernel) {
    Kind kind = Kind::Entry;
    uint32_t mask = kComesOrGoes;
    const bool isRoot = way.isAtLast() && item.exists() && !item.isLink();
    if (isRoot && !item.isFolder()) {
        kind = Kind::File;
        mask |= kIsWritten;
    } else if (isRoot && euidaccess(way.item().c_str(), R_OK) != 0) {
        kind = Kind::LockedFolder;
        mask |= IN_ATTRIB;
    }
    return add(way.folder(), mask, {tree, way.name(), kind}, kernel);
}

bool RootGuards::add(const std::string& folder, uint32_t mask, Guard guard, KernelWatches& kernel) {
    const int watch = kernel.addPath(folder.c_str(), mask);
    if (watch < 0)
        return errno != ENOENT && errno != ENOTDIR;
    _guards.emplace(watch, std::move(guard));
    return true;
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
    if (guard.kind == Kind::Directory)
        return (event.mask & kIsMoved) != 0 ? Concern::Way : Concern::None;
    if (event.name != guard.name)
        return Concern::None;
    if ((event.mask & kComesOrGoes) != 0)
        return Concern::Way;
    if (guard.kind == Kind::LockedFolder)
        return (event.mask & IN_ATTRIB) != 0 ? Concern::Way : Concern::None;
    const bool isWritten = guard.kind == Kind::File && (event.mask & kIsWritten) != 0;
    return isWritten ? Concern::Content : Concern::None;
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
