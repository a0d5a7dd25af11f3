// SPDX-License-Identifier: MIT
#pragma once

#include "KernelWatches.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace fsevents {

// Watches over the way to each root: the folders above it and the links on the way, and where
// something is missing the last folder that is there.
class RootGuards {
public:
    enum class Concern {
        None,
        Way,      // the root may be gone, back, or another one
        Content,  // a root that is no folder was written to, or its attributes were changed
    };

    void arm(uint32_t tree, const std::string& path, KernelWatches& kernel);
    // The watches that nobody here uses any more.
    std::vector<int> disarm(uint32_t tree);
    void forget(int watch) { _guards.erase(watch); }
    bool uses(int watch) const { return _guards.contains(watch); }

    // Which trees the event concerns.
    std::vector<std::pair<uint32_t, Concern>> concernedBy(const KernelEvent& event) const;

private:
    class Way;
    struct Item;
    enum class Kind {
        Directory,     // the folder itself, which is on the way
        Entry,         // something in the folder that may come and go
        File,          // the same, a root that is no folder
        LockedFolder,  // the same, a root that may not be read as yet
    };
    struct Guard {
        uint32_t tree;
        std::string name;  // of the entry
        Kind kind;
    };

    // Fail: false where the folder is gone.
    bool addEntry(uint32_t tree, const Way& way, const Item& item, KernelWatches& kernel);
    bool add(const std::string& folder, uint32_t mask, Guard guard, KernelWatches& kernel);
    static Concern concern(const Guard& guard, const KernelEvent& event);

    std::multimap<int, Guard> _guards;
};

}  // namespace fsevents
