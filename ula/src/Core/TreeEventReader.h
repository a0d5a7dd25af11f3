// SPDX-License-Identifier: MIT
#pragma once

#include "ula/TreeMonitor.h"
#include "ula/src/Core/IgnorePatterns.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace tav::ula {

/// What the platform says of one path. More than one of the changes may be set where it has put
/// several into one.
struct ReportedChange {
    std::string path;
    std::uint64_t id = 0;
    bool isCreated = false;
    bool isRemoved = false;
    bool isRenamed = false;
    bool isFolder = false;
    bool mustScan = false;
    bool isRootChanged = false;
};

/// Makes the events of a tree of what the platform reports.
class TreeEventReader {
public:
    /// Whether there is something, and whether that is a folder.
    using Look = std::function<std::optional<bool>(const std::string& path)>;

    TreeEventReader(std::string root, const std::vector<std::string>& ignore, Look look);

    /// The events of changes[*index], and moves the index on. Both ends of a move come in one
    /// array.
    std::vector<TreeEvent> readNext(const std::vector<ReportedChange>& changes, std::size_t* index);
    /// Everything at and below the path was read, and that knew already of all changes up to this
    /// number: what they tell is taken as a hint only where to look.
    void didRescan(const std::string& path, std::uint64_t latestId);

private:
    struct Rescan {
        std::string path;
        std::uint64_t latestId;
    };

    bool isIgnored(const std::string& path) const;
    bool isOutdated(const ReportedChange& change) const;
    void forgetRescansBefore(std::uint64_t id);
    void readRoot(std::vector<TreeEvent>& events) const;
    void readMove(const ReportedChange& from, const ReportedChange& to,
                  std::vector<TreeEvent>& events) const;
    void readItem(const ReportedChange& change, std::vector<TreeEvent>& events) const;
    void lookAgain(const ReportedChange& change, std::vector<TreeEvent>& events) const;

    std::vector<Rescan> _rescans;
    std::string _root;
    IgnorePatterns _ignore;
    Look _look;
};

}  // namespace tav::ula
