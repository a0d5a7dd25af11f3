// SPDX-License-Identifier: MIT
#include "ula/Dir.h"

#include "ula/src/Core/FinderSort.h"

#include <iostream>
#include <utility>

namespace tav::ula {

namespace {

void deleteAll(std::vector<Dir*>& nodes) {
    for (const Dir* node : nodes)
        delete node;
    nodes.clear();
}

/// The helpers of a listing. Deletes those that nobody has taken.
class FoundHelpers {
public:
    FoundHelpers() = default;
    explicit FoundHelpers(std::vector<AbstractDirHelper*> found) : helpers(std::move(found)) {}
    FoundHelpers(const FoundHelpers&) = delete;
    FoundHelpers& operator=(const FoundHelpers&) = delete;
    ~FoundHelpers() {
        for (const AbstractDirHelper* helper : helpers)
            delete helper;
    }

    std::vector<AbstractDirHelper*> helpers;
};

}  // namespace

Dir::Dir(const std::string& path) : _helper(AbstractDirHelper::create(path)) {
}

Dir::Dir(AbstractDirHelper* helper) : _helper(helper) {
}

Dir::~Dir() {
    _helper.reset();
    deleteAll(_children);
}

AbstractDirHelper* Dir::createDirHelper(const std::string& path) const {
    return AbstractDirHelper::create(path);
}

std::string Dir::sep() {
    return "/";
}

bool Dir::isRoot() const {
    return _helper->isRoot();
}

bool Dir::exists() const {
    return _helper->exists();
}

bool Dir::containsChildren(bool visibleFoldersOnly) const {
    return _helper->containsChildren(visibleFoldersOnly);
}

void Dir::adopt(std::vector<AbstractDirHelper*>& helpers) {
    _children.reserve(helpers.size());
    for (AbstractDirHelper*& helper : helpers)
        _children.push_back(new Dir(std::exchange(helper, nullptr)));
    _childrenLoaded = true;
}

const std::vector<Dir*>& Dir::children(bool visibleFoldersOnly) {
    if (!_childrenLoaded) {
        FoundHelpers found(_helper->children(visibleFoldersOnly));
        adopt(found.helpers);
    }
    return _children;
}

std::vector<Dir*> Dir::childrenSorted(bool visibleFoldersOnly) {
    const std::vector<Dir*>& nodes = children(visibleFoldersOnly);
    std::vector<const std::string*> titles;
    titles.reserve(nodes.size());
    for (const Dir* node : nodes)
        titles.push_back(&node->properties().title());
    std::vector<Dir*> sorted;
    sorted.reserve(nodes.size());
    for (const std::size_t position : finderOrder(titles))
        sorted.push_back(nodes[position]);
    return sorted;
}

bool Dir::loadChildren(bool visibleFoldersOnly, const ListingProgress& progress) {
    if (_childrenLoaded)
        return true;
    FoundHelpers found;
    if (!_helper->childrenWithProgress(visibleFoldersOnly, progress, found.helpers))
        return false;
    adopt(found.helpers);
    return true;
}

void Dir::reset() {
    const std::string path = fullPath();
    _helper.reset();
    deleteAll(_children);
    _childrenLoaded = false;
    _helper.reset(AbstractDirHelper::create(path));
}

void Dir::dump(bool withChildren) {
    std::cout << "Name:" << name() << " Title:" << title() << " FullPath:" << fullPath()
              << " Target:" << targetPath() << std::endl;
    std::cout << "IsRoot: " << isRoot() << " Exists:" << exists() << " IsAlias:" << isAlias()
              << " isUnresolvedAlias:" << isUnresolvedAlias() << " isLink:" << isLink()
              << " isHidden:" << isHidden() << " isReadOnly:" << isReadOnly() << std::endl;
    if (!withChildren)
        return;
    for (Dir* child : children(false))
        child->dump(false);
}

}  // namespace tav::ula
