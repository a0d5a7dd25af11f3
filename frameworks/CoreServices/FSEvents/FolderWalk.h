// SPDX-License-Identifier: MIT
#pragma once

#include "FolderStore.h"
#include "KernelWatches.h"

#include <string>
#include <string_view>
#include <vector>

namespace fsevents {

// Watches a folder and everything below it. Each folder is watched first and listed then, so that
// what is made meanwhile is either found here or told by the kernel; folders are entered through
// their parents' descriptors, so that a move on the way leads nowhere else.
class FolderWalk {
public:
    // The kernel's queue must not fill up while many folders are looked at.
    static constexpr unsigned kFoldersBetweenCollections = 256;

    class Observer {
    public:
        virtual ~Observer() = default;
        // Something that is in a folder which was not watched yet.
        virtual void found(Folder folder, std::string_view name, bool isFolder) = 0;
        // Another folder has the place of this one.
        virtual void replaced(Folder folder) = 0;
        // Changes below folder/name will not be told.
        virtual void notFollowed(Folder folder, std::string_view name, int error) = 0;
        // Whether to leave folder/name out.
        virtual bool isExcluded(Folder folder, std::string_view name) = 0;
    };

    FolderWalk(KernelWatches& kernel, FolderStore& store, Observer& observer)
        : _kernel(kernel), _store(store), _observer(observer) {}

    // The sub-folder `name` of a folder that is open. Nothing is done for one that is known.
    void enter(Folder parent, int parentDescriptor, std::string_view name);
    // Everything below a folder that is watched and open.
    void list(Folder folder, int descriptor);

private:
    void listNames(Folder folder, int descriptor);
    Folder place(Folder parent, std::string_view name, int watch);
    void enterOpen(Folder parent, std::string_view name, int descriptor);

    KernelWatches& _kernel;
    FolderStore& _store;
    Observer& _observer;
    int _depth = 0;
    unsigned _listed = 0;
    // Names of the sub-folders still to be entered, zero-terminated, of all folders on the way.
    std::vector<char> _names;
    std::vector<char> _entries;
};

}  // namespace fsevents
