// SPDX-License-Identifier: MIT
#pragma once

#include "CoreServices/FSEvents.h"
#include "FolderStore.h"
#include "FolderWalk.h"
#include "KernelWatches.h"
#include "MovePairs.h"
#include "OpenFolder.h"
#include "RootGuards.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace fsevents {

// Keeps the folders of all trees watched as they come, go and move, and tells what changes.
//
// What it knows of the disk is as old as the events that it has handled. A folder is therefore
// never taken for another by its path alone: it is the one with the same kernel watch.
// Thread: one at a time.
class FolderTracker : private FolderWalk::Observer {
public:
    class Client {
    public:
        virtual ~Client() = default;
        virtual const std::string& rootPath(uint32_t tree) const = 0;
        // The first of so many numbers in a row.
        virtual FSEventStreamEventId nextEventIds(unsigned count) = 0;
        // An empty name stands for the folder itself.
        virtual void itemChanged(Folder folder, std::string_view name,
                                 FSEventStreamEventFlags flags, FSEventStreamEventId id) = 0;
        virtual void notFollowed(Folder folder, std::string_view name, int error) = 0;
        virtual bool isExcluded(Folder folder, std::string_view name) = 0;
        // Of a root that is no folder.
        virtual void rootWritten(uint32_t tree, FSEventStreamEventFlags flags) = 0;
        // The root folder is no longer watched.
        virtual void rootForgotten(uint32_t tree) = 0;
        // The client looks when everything that is waiting has been handled.
        virtual void rootMayBeAnother(uint32_t tree) = 0;
        // Events were lost: nothing that is known of any tree is certain. As above.
        virtual void lostTrack() = 0;
    };

    FolderTracker(std::unique_ptr<KernelWatches> kernel, Client& client);

    KernelWatches& kernel() { return *_kernel; }
    FolderStore& store() { return _store; }

    // Watches the way to the root and, where it is a folder, all of it. Nothing of it is told.
    // Fails: kNoFolder for what is missing or no folder, and with an error for what can't be read.
    Folder openRoot(uint32_t tree, int* error);
    void closeRoot(uint32_t tree, Folder root);
    // Whether the path of the root still leads to this folder. Its way is watched anew.
    bool leadsTo(uint32_t tree, Folder root);
    // Looks at a folder below a root anew, since something was mounted or unmounted there.
    void refresh(Folder root, std::string_view pathBelowRoot);
    // Tells what is waiting.
    void handleWaiting();

private:
    // Within one tree.
    struct Move {
        Folder source;
        Folder target;
    };

    void handle(const std::vector<KernelEvent>& events);
    void handleSingle(const KernelEvent& event);
    void handleOn(Folder folder, const KernelEvent& event, FSEventStreamEventId id);
    void handleItem(Folder folder, const KernelEvent& event, FSEventStreamEventId id);
    void handleGuarded(const KernelEvent& event);
    void handleMove(const KernelEvent& from, const KernelEvent& to);
    void tellMoves(const std::vector<Move>& moves, const KernelEvent& from, const KernelEvent& to);
    void followMove(const Move& move, const KernelEvent& from, const KernelEvent& to);
    void relocate(Folder source, std::string_view oldName, Folder target, std::string_view newName);
    bool mayBeAt(Folder folder, Folder parent, std::string_view name);
    void complete(Folder top);
    void tellRemoved(Folder parent, std::string_view name);
    void removeFolder(Folder parent, std::string_view name);
    void tellIfThere(Folder folder, std::string_view name);
    void adopt(Folder parent, std::string_view name, bool tellsContent = true);
    void enter(Folder parent, int descriptor, std::string_view name, bool tellsContent);
    void forgetChild(Folder parent, std::string_view name);
    void forget(Folder top);
    void release(int watch);
    bool isBelow(Folder folder, Folder top) const;
    cf::Descriptor open(Folder folder);
    std::string pathOf(Folder folder) const;

    void found(Folder folder, std::string_view name, bool isFolder) override;
    void replaced(Folder folder) override;
    void notFollowed(Folder folder, std::string_view name, int error) override {
        _client.notFollowed(folder, name, error);
    }
    bool isExcluded(Folder folder, std::string_view name) override {
        return _client.isExcluded(folder, name);
    }

    std::unique_ptr<KernelWatches> _kernel;
    Client& _client;
    FolderStore _store;
    RootGuards _guards;
    bool _tellsFound = false;
};

}  // namespace fsevents
