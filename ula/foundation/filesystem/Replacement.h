// SPDX-License-Identifier: MIT
#pragma once

#include "ula/foundation/filesystem/Descriptor.h"
#include "ula/foundation/filesystem/DurableFile.h"

#include <string>
#include <sys/stat.h>

namespace tav::filesystem {

/// One replacement under way.
class DurableFile::Replacement {
public:
    Replacement(const String& path, DurableFileOptions options);
    ~Replacement() { removeTraces(); }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;

    bool write(std::string_view bytes);
    bool commit();
    const std::string& error() const { return _error; }
    bool exists() const { return _exists; }
    bool isCommitted() const { return _isCommitted; }
    bool isOnlyNew() const { return _options.onlyNew; }

    /// What `commit` does with a new file, step by step. After a failure the later ones fail, too.
    bool syncNew();
    bool nameSyncedFile();
    bool syncFolder();
    void giveUp(int reason);
    const std::string& folderPath() const { return _folderPath; }

private:
    /// How often a hidden name may be taken from us by others who save the same file just now.
    static constexpr int kMostCollisions = 1000;

    bool open();
    bool findOldFile();
    bool createNewFile();
    bool createNamedFile(mode_t mode);
    bool copyPermissions();
    bool copyAccessList();

    bool replace();
    bool linkNew();
    bool setTime();
    bool sync(const Descriptor& descriptor);
    bool nameNewFile();
    bool keepOldFile();
    bool copyOldFile();
    bool linkOldFile(const std::string& name);
    bool putInPlace();
    void putBack();
    void removeLeftovers();
    void removeIfAbandoned(const char* name);
    void removeTraces();

    /// Tells others that this saver lives; where there are no locks, nothing can be told. Waits
    /// for one who is just looking whether it does.
    static void lock(const Descriptor& file);
    /// The hidden name of the new file, this saver's alone.
    std::string ownName() const;

    bool fail(const char* what, int errorNumber);
    bool link(int from, const char* name, const std::string& newName, int flags);
    bool removeHidden(const std::string& name);

    std::string _path;
    DurableFileOptions _options;
    std::string _folderPath;
    std::string _leaf;
    Descriptor _folder;
    Descriptor _file;
    struct stat _old {};
    bool _hasOld = false;
    std::string _newName;  ///< the hidden name of the new file while it has one
    std::string _oldName;  ///< a second, hidden name of the old file while it has one
    bool _isUnnamed = false;
    bool _failed = false;
    bool _exists = false;
    bool _isCommitted = false;
    std::string _error;
};

}  // namespace tav::filesystem
