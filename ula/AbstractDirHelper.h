// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"
#include "ula/FileProperties.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace tav::ula {

/// Told how many children a listing has found so far, now and then; answers whether to go on.
using ListingProgress = std::function<bool(std::size_t found)>;

/// What a `Dir` asks of the platform: one directory's record, and how to look into it. A tree of
/// other things than folders is shown by helpers of one's own.
/// Thread: one at a time. All but `properties` wait for the disk.
class ULA_API AbstractDirHelper {
public:
    AbstractDirHelper(const AbstractDirHelper&) = delete;
    AbstractDirHelper& operator=(const AbstractDirHelper&) = delete;
    virtual ~AbstractDirHelper();

    /// A helper for each child, in the order in which the platform lists them; with
    /// `visibleFoldersOnly` for what can be looked into and is not hidden. Owner: the caller.
    /// Fails: none, for what is missing or cannot be read.
    virtual std::vector<AbstractDirHelper*> children(bool visibleFoldersOnly) = 0;
    /// Whether `children` would find any. The base version logs an assertion.
    virtual bool containsChildren(bool visibleFoldersOnly) const;
    /// Whether the full path is its own name, as for "/".
    virtual bool isRoot() const;
    virtual bool exists() const = 0;
    /// Looks at the directory anew.
    virtual void refresh() = 0;
    /// As `children`, telling of its progress. False when `progress` ended it; `found` then holds
    /// what was found so far. The base version tells once, at the end.
    virtual bool childrenWithProgress(bool visibleFoldersOnly, const ListingProgress& progress,
                                      std::vector<AbstractDirHelper*>& found);

    const FileProperties& properties() const { return _properties; }

    /// The platform's helper for a path. Owner: the caller.
    static AbstractDirHelper* create(const std::string& path);

protected:
    /// Of a path of at least 4 characters a "/" at its end is cut off; shorter ones keep it on
    /// purpose.
    explicit AbstractDirHelper(const std::string& path);
    explicit AbstractDirHelper(FileProperties properties);

    void setProperties(FileProperties properties) { _properties = std::move(properties); }

private:
    FileProperties _properties;
};

}  // namespace tav::ula
