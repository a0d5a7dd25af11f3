// SPDX-License-Identifier: MIT
#include "FolderStore.h"

#include <algorithm>
#include <functional>

namespace fsevents {

uint32_t FolderStore::hashOfWatch(int watch) {
    return static_cast<uint32_t>(watch) * 2654435761u;
}

uint32_t FolderStore::hashOfName(Folder parent, std::string_view name) {
    const std::size_t hash = std::hash<std::string_view>()(name) + parent * 0x9E3779B97F4A7C15u;
    return static_cast<uint32_t>(hash ^ (hash >> 32));
}

Folder FolderStore::newNode(int watch) {
    Folder folder = static_cast<Folder>(_nodes.size());
    if (_free.empty()) {
        _nodes.emplace_back();
    } else {
        folder = _free.back();
        _free.pop_back();
        _nodes[folder] = {};
    }
    _nodes[folder].watch = watch;
    _byWatch.insert(hashOfWatch(watch), folder);
    return folder;
}

Folder FolderStore::addRoot(uint32_t tree, int watch) {
    const Folder folder = newNode(watch);
    _nodes[folder].name = tree;
    return folder;
}

Folder FolderStore::add(Folder parent, std::string_view name, int watch) {
    const Folder folder = newNode(watch);
    link(folder, parent, name);
    return folder;
}

Folder FolderStore::child(Folder parent, std::string_view name) const {
    return _byName.find(hashOfName(parent, name), [&](Folder folder) {
        return _nodes[folder].parent == parent && nameOf(folder) == name;
    });
}

std::vector<Folder> FolderStore::onWatch(int watch) const {
    std::vector<Folder> folders;
    _byWatch.find(hashOfWatch(watch), [&](Folder folder) {
        if (_nodes[folder].watch == watch)
            folders.push_back(folder);
        return false;
    });
    return folders;
}

bool FolderStore::isWatched(int watch) const {
    return _byWatch.find(hashOfWatch(watch), [&](Folder folder) {
        return _nodes[folder].watch == watch;
    }) != IndexTable::kNone;
}

std::vector<Folder> FolderStore::subtree(Folder top) const {
    std::vector<Folder> folders{top};
    for (std::size_t at = 0; at < folders.size(); ++at)
        for (Folder child = _nodes[folders[at]].firstChild; child != kNoFolder;
             child = _nodes[child].next)
            folders.push_back(child);
    std::reverse(folders.begin(), folders.end());
    return folders;
}

void FolderStore::move(Folder folder, Folder newParent, std::string_view newName) {
    const std::string name(newName);
    unlink(folder);
    link(folder, newParent, name);
}

void FolderStore::remove(Folder folder) {
    setIncomplete(folder, false);
    if (!isRoot(folder))
        unlink(folder);
    _byWatch.erase(hashOfWatch(_nodes[folder].watch), folder);
    _nodes[folder] = {};
    _free.push_back(folder);
}

uint32_t FolderStore::treeOf(Folder folder) const {
    while (_nodes[folder].parent != kNoFolder)
        folder = _nodes[folder].parent;
    return _nodes[folder].name;
}

std::string_view FolderStore::nameOf(Folder folder) const {
    const Node& node = _nodes[folder];
    return {_names.data() + node.name, node.nameLength};
}

std::string FolderStore::pathBelowRoot(Folder folder) const {
    std::size_t length = 0;
    for (Folder at = folder; !isRoot(at); at = _nodes[at].parent)
        length += 1 + _nodes[at].nameLength;
    std::string path(length, '/');
    for (Folder at = folder; !isRoot(at); at = _nodes[at].parent) {
        const std::string_view name = nameOf(at);
        length -= name.size();
        name.copy(path.data() + length, name.size());
        --length;
    }
    return path;
}

void FolderStore::setIncomplete(Folder folder, bool incomplete) {
    Node& node = _nodes[folder];
    if (node.incomplete == incomplete)
        return;
    node.incomplete = incomplete;
    incomplete ? ++_incomplete : --_incomplete;
}

void FolderStore::link(Folder folder, Folder parent, std::string_view name) {
    Node& node = _nodes[folder];
    keepName(node, name);
    node.parent = parent;
    node.previous = kNoFolder;
    node.next = _nodes[parent].firstChild;
    if (node.next != kNoFolder)
        _nodes[node.next].previous = folder;
    _nodes[parent].firstChild = folder;
    _byName.insert(hashOfName(parent, name), folder);
}

void FolderStore::unlink(Folder folder) {
    Node& node = _nodes[folder];
    _byName.erase(hashOfName(node.parent, nameOf(folder)), folder);
    if (node.previous != kNoFolder)
        _nodes[node.previous].next = node.next;
    else
        _nodes[node.parent].firstChild = node.next;
    if (node.next != kNoFolder)
        _nodes[node.next].previous = node.previous;
    _unusedNames += node.nameLength;
    node.nameLength = 0;
}

void FolderStore::keepName(Node& node, std::string_view name) {
    if (_names.size() + name.size() > _names.capacity() && 2 * _unusedNames > _names.size())
        compactNames();
    node.name = static_cast<uint32_t>(_names.size());
    node.nameLength = static_cast<uint16_t>(name.size());
    _names.insert(_names.end(), name.begin(), name.end());
}

void FolderStore::compactNames() {
    std::vector<char> kept;
    for (Node& node : _nodes) {
        if (node.parent == kNoFolder || node.nameLength == 0)
            continue;
        const auto begin = _names.begin() + node.name;
        node.name = static_cast<uint32_t>(kept.size());
        kept.insert(kept.end(), begin, begin + node.nameLength);
    }
    _names = std::move(kept);
    _unusedNames = 0;
}

}  // namespace fsevents
