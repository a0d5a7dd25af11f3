// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tav::ula {

class ImportSource;

/// A camera, a phone or a memory card.
struct ImportDevice {
    std::string id;  ///< as `PTPImporter` names it
    std::string name;
    bool isCard = false;
    std::string problem;  ///< why it cannot be read, and what to do about it; empty when it can
};

/// A file on a device. Two folders may have files of the same name: the number tells them apart,
/// for as long as the device is connected.
struct ImportObject {
    std::uint32_t number = 0;
    std::string name;    ///< fit to be a file's name
    std::string folder;  ///< the names of the folders it lies in, "100CANON"
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< seconds since 1970; 0 where the device does not tell
};

struct ImportOptions {
    /// Folders by the day a picture was taken, below the chosen one: "%Y/%Y-%m-%d". %Y, %m and %d
    /// stand for year, month and day. Empty: all in the chosen folder.
    std::string dateFolders;
    /// Reads what was written back from the disk and compares checksums.
    bool verify = false;
};

struct ImportProgress {
    const ImportObject* object = nullptr;  ///< the one that is being brought over
    std::uint64_t bytes = 0;               ///< of it so far; 0 when it is done
    std::size_t files = 0;  ///< done or left out; the last ones may not be on the disk yet
    std::size_t totalFiles = 0;
    std::uint64_t doneBytes = 0;  ///< those of the files that are done
    std::uint64_t totalBytes = 0;
};

enum class ImportResult {
    Imported,
    AlreadyThere,  ///< a file of this name, size and date: nothing was done
    Failed,
    Cancelled,
};

/// Where it failed.
enum class ImportFailure {
    None,
    Source,  ///< the device did not give the file
    Target,  ///< it could not be written here, or did not come back from the disk as it was
};

struct ImportedFile {
    ImportObject object;
    ImportResult result = ImportResult::Failed;
    ImportFailure failure = ImportFailure::None;
    std::string path;   ///< where it is now; empty unless it was imported or there
    std::string error;  ///< why it failed
};

/// Brings files of one device over: chosen by object, with progress, to be cancelled and taken up
/// again. A file is whole on the disk or not there, whatever dies in between; what is there already
/// by name, size and date is left out, so that doing it again does only what is left to do. Nothing
/// is ever replaced: where another file has the name, a number is added to it.
/// Thread: any, one at a time; `cancel` from every one.
class ULA_API ImportSession {
public:
    using Listed = std::function<bool(const std::vector<ImportObject>& part)>;
    using Progress = std::function<void(const ImportProgress& progress)>;

    /// What is connected now, with files or without. Nobody speaks to a camera for it.
    static std::vector<ImportDevice> devices();

    explicit ImportSession(const std::string& deviceId);
    /// On another source of files, for the library's own tests: what a source is, is told by a
    /// header that is not installed. Owner: the session.
    explicit ImportSession(std::unique_ptr<ImportSource> source);
    ~ImportSession();
    ImportSession(const ImportSession&) = delete;
    ImportSession& operator=(const ImportSession&) = delete;

    /// Lists the device part by part, each as soon as it is read; `listed` returns whether to go
    /// on. Fails: false when something could not be read, and `error` says what.
    bool list(const Listed& listed);
    /// Everything at once.
    std::vector<ImportObject> list();
    const std::string& error() const { return _error; }

    /// Brings the objects over, in their order, into a folder, which is made if need be. One result
    /// for each. Fails: goes on with the next, unless the device has gone.
    std::vector<ImportedFile> import(const std::vector<ImportObject>& objects,
                                     const std::string& folder, const ImportOptions& options = {},
                                     const Progress& progress = {});
    /// Ends an import, now or one that begins later, within a second or so. Thread: any.
    void cancel() { _isCancelled = true; }

private:
    bool listFolder(std::uint32_t number, const std::string& path, int depth, const Listed& listed);

    std::unique_ptr<ImportSource> _source;
    std::atomic<bool> _isCancelled = false;
    std::string _error;
};

}  // namespace tav::ula
