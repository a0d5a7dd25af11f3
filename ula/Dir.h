// SPDX-License-Identifier: MIT
#pragma once

#include "ula/AbstractDirHelper.h"
#include "ula/Export.h"
#include "ula/FileProperties.h"

#include <memory>
#include <string>
#include <vector>

namespace tav::ula {

/// A node of a directory tree, as a folder browser shows it. It knows what there is to know of its
/// own path and lists its children once, on demand, keeping them until `reset`.
/// Thread: a tree is used from one; nothing is locked. What is not told otherwise answers at once.
class ULA_API Dir {
public:
    /// Looks at the path; waits for the disk.
    explicit Dir(const std::string& path);
    /// Owner: the node, of the helper.
    explicit Dir(AbstractDirHelper* helper);
    Dir(const Dir&) = delete;
    Dir& operator=(const Dir&) = delete;
    ~Dir();

    /// The platform's helper for a path. Owner: the caller.
    AbstractDirHelper* createDirHelper(const std::string& path) const;
    /// "/".
    static std::string sep();

    const FileProperties& properties() const { return _helper->properties(); }
    std::string name() const { return properties().name(); }
    std::string title() const { return properties().title(); }
    std::string fullPath() const { return properties().fullPath(); }
    std::string targetPath() const { return properties().targetPath(); }
    bool isDir() const { return properties().isFlagSet(Directory); }
    bool isReadOnly() const { return properties().isFlagSet(ReadOnly); }
    bool isHidden() const { return properties().isFlagSet(Hidden); }
    bool isLink() const { return properties().isFlagSet(Link); }
    bool isUnresolvedAlias() const { return properties().isFlagSet(UnresolvedAlias); }
    bool isAlias() const { return properties().isFlagSet(Alias); }

    bool isRoot() const;
    /// Waits for the disk.
    bool exists() const;
    /// Whether there is anything to list; stops at the first that counts. Waits for the disk.
    bool containsChildren(bool visibleFoldersOnly) const;

    /// The children, listed when first asked for, which waits for the disk. The first call decides
    /// which they are: a later one with the other argument gives the same ones, until `reset`.
    /// Owner: the node. Fails: no children, of what is missing or cannot be read.
    const std::vector<Dir*>& children(bool visibleFoldersOnly);
    /// The children as `children` keeps them, put into the Finder's order of their titles.
    /// Owner: the node, of what they point to.
    std::vector<Dir*> childrenSorted(bool visibleFoldersOnly);
    /// Lists the children, telling `progress` how many were found so far; it ends the listing by
    /// answering false. Returns whether the children are loaded; a listing that was ended, or whose
    /// `progress` has thrown, leaves the node as it was.
    bool loadChildren(bool visibleFoldersOnly, const ListingProgress& progress);

    /// Forgets the children and looks at the path anew; waits for the disk.
    void reset();

    /// Writes two lines about the node to standard output, and with `withChildren` two about each
    /// of its children.
    void dump(bool withChildren);

private:
    /// Leaves null pointers behind.
    void adopt(std::vector<AbstractDirHelper*>& helpers);

    std::unique_ptr<AbstractDirHelper> _helper;
    bool _childrenLoaded = false;
    std::vector<Dir*> _children;
};

}  // namespace tav::ula
