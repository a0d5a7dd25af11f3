// SPDX-License-Identifier: MIT
#pragma once

#include "IndexTable.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fsevents {

// A folder that is watched, by its number. Numbers of folders that were removed are used again.
using Folder = uint32_t;
constexpr Folder kNoFolder = IndexTable::kNone;

// The folders of all trees, each with its parent, its name and the kernel's watch. Small: some 50
// bytes a folder beside its name. One folder of the disk is here more than once, with the same
// watch, when trees overlap or it is mounted at several places.
class FolderStore {
public:
    // Owner: the store, of names; they are copied.
    Folder addRoot(uint32_t tree, int watch);
    Folder add(Folder parent, std::string_view name, int watch);
    // Fails: kNoFolder.
    Folder child(Folder parent, std::string_view name) const;
    // In the order in which they were added last.
    std::vector<Folder> onWatch(int watch) const;
    bool isWatched(int watch) const;
    // The folder and everything below it, the deepest first.
    std::vector<Folder> subtree(Folder top) const;

    // A place of that name must be free below the parent, which must not lie in the folder.
    void move(Folder folder, Folder newParent, std::string_view newName);
    // A folder without children.
    void remove(Folder folder);

    uint32_t treeOf(Folder folder) const;
    int watchOf(Folder folder) const { return _nodes[folder].watch; }
    bool isRoot(Folder folder) const { return _nodes[folder].parent == kNoFolder; }
    Folder parentOf(Folder folder) const { return _nodes[folder].parent; }
    std::string_view nameOf(Folder folder) const;
    // "" for a root, "/sub/folder" for others.
    std::string pathBelowRoot(Folder folder) const;

    // Whether its children may not all be known.
    bool isIncomplete(Folder folder) const { return _nodes[folder].incomplete; }
    void setIncomplete(Folder folder, bool incomplete);
    bool hasIncomplete() const { return _incomplete != 0; }

private:
    struct Node {
        Folder parent = kNoFolder;
        Folder firstChild = kNoFolder;
        Folder next = kNoFolder;
        Folder previous = kNoFolder;
        int watch = -1;
        uint32_t name = 0;  // where it begins in _names; a root's tree
        uint16_t nameLength = 0;
        bool incomplete = false;
    };

    Folder newNode(int watch);
    void link(Folder folder, Folder parent, std::string_view name);
    void unlink(Folder folder);
    void keepName(Node& node, std::string_view name);
    void compactNames();
    static uint32_t hashOfWatch(int watch);
    static uint32_t hashOfName(Folder parent, std::string_view name);

    std::vector<Node> _nodes;
    std::vector<Folder> _free;
    std::vector<char> _names;
    std::size_t _unusedNames = 0;
    std::size_t _incomplete = 0;
    IndexTable _byWatch;
    IndexTable _byName;
};

}  // namespace fsevents
