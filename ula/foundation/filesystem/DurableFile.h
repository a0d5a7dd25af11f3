// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/text/FastString.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tav::filesystem {

struct DurableFileOptions {
    /// Waits until the new file is on the disk. Without it a crash of the machine (not of the
    /// program) may lose the new file; the old or the new one is whole all the same.
    bool sync = true;
    /// Keeps the file that is replaced under this name in the same folder, replacing what had
    /// the name; empty: not kept. After a failure it may already be the file that is still in
    /// place.
    std::string keepOldAs = {};
    /// Makes a new file and replaces nothing: what has the name, a link included, stays, and the
    /// operation fails with `error()` saying that the file exists.
    bool onlyNew = false;
    /// When the new file was last changed; without it, now. Units: seconds since 1970.
    std::optional<std::int64_t> modificationTime = {};
};

/// Replaces a file by a new one, whole or not at all: whoever opens the path at any moment, after
/// a crash at any moment, finds the old file or the new one. Every writer of user data in the
/// library goes through this class.
///
/// The bytes go to a file without a name in the same folder (or, where the file system has no such
/// files, to a hidden one), which is given the permissions of the old one, synced, put in the
/// place of the old one, and the folder is synced. Of a symbolic link the target is replaced. A
/// hidden file that a killed process left behind is removed by the next replacement.
///
/// Several processes may replace the same path at once; each gets its turn and the last one
/// stays. The new file is locked (flock) while it has a hidden name, so that they can tell it from
/// one that a dead process left.
///
/// Thread: one thread uses one object.
/// Fails: operations give false, `error()` says why, nothing has changed on disk and nothing is
/// left behind. Not logged.
class TAV_FOUNDATION_API DurableFile {
public:
    explicit DurableFile(const String& path, DurableFileOptions options = {});
    DurableFile(const DurableFile&) = delete;
    DurableFile& operator=(const DurableFile&) = delete;
    /// Without a `commit` before it: gives the replacement up.
    ~DurableFile();

    /// Appends bytes to the new file. After a failure the later calls fail too.
    bool write(std::string_view bytes);
    /// Puts the new file in its place. To be called once, last.
    bool commit();

    /// The same for several new files (`onlyNew`) at once, in much less time than one by one: none
    /// has its name before all are on the disk. `isCommitted` tells of each.
    static void commitTogether(const std::vector<DurableFile*>& files);
    /// Whether the new file is in its place.
    bool isCommitted() const;
    /// Whether it failed because something has the name that was to be new.
    bool exists() const;
    /// What failed and why, in words, e.g. "cannot write /a/b.xml: No space left on device".
    const std::string& error() const;

private:
    class TAV_FOUNDATION_LOCAL Replacement;
    std::unique_ptr<Replacement> _replacement;
};

/// Replaces the file at `path` by one with these bytes; see `DurableFile`. `error`, if given,
/// receives the reason of a failure.
TAV_FOUNDATION_API bool replaceFileDurably(const String& path, std::string_view bytes,
                                           const DurableFileOptions& options = {},
                                           std::string* error = nullptr);

}  // namespace tav::filesystem
