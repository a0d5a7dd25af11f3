// SPDX-License-Identifier: MIT
#include "ula/foundation/filesystem/DurableFile.h"

#include "ula/foundation/filesystem/Descriptor.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/foundation/text/NumberConversion.h"

#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <functional>
#include <map>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>

namespace tav::filesystem {

namespace {

constexpr int kMostLinks = 40;
/// How often a hidden name may be taken from us by others who save the same file just now.
constexpr int kMostCollisions = 1000;
constexpr const char* kNewPurpose = "new-";
constexpr const char* kAccessList = "system.posix_acl_access";

/// The path behind a chain of symbolic links; the last one may name nothing. Fails: errno.
bool followLinks(std::string& path) {
    for (int links = 0; links < kMostLinks; ++links) {
        char target[PATH_MAX];
        const ssize_t length =
            retryInterrupted([&] { return readlink(path.c_str(), target, sizeof target); });
        if (length < 0)
            return errno == EINVAL || errno == ENOENT;  // no link, or nothing yet
        const std::string_view view(target, static_cast<std::size_t>(length));
        if (view.substr(0, 1) == "/")
            path = view;
        else
            path = path.substr(0, path.rfind('/') + 1).append(view);
    }
    errno = ELOOP;
    return false;
}

/// ".LEAF.ula-PURPOSE", with a hash in place of the end of a name that is too long for that. The
/// same begin for every save of a file, so that what a killed process left is found again.
std::string hiddenName(const std::string& leaf, const char* purpose) {
    constexpr std::size_t kRoomForNumbers = 40;
    const std::string suffix = std::string(".ula-") + purpose;
    std::string name = leaf;
    if (1 + name.size() + suffix.size() + kRoomForNumbers > NAME_MAX) {
        const std::size_t hash = std::hash<std::string_view>()(leaf);
        name = name.substr(0, 160) + "." + std::to_string(hash);
    }
    return "." + name + suffix;
}

}  // namespace

/// One replacement under way.
class DurableFile::Replacement {
public:
    Replacement(const String& path, DurableFileOptions options)
        : _path(path.toStdString()), _options(std::move(options)) {
        _failed = !(open() || fail("cannot write", errno));
    }
    ~Replacement() { removeTraces(); }

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
    static void lock(const Descriptor& file) {
        retryInterrupted([&] { return flock(file.get(), LOCK_EX); });
    }
    /// The hidden name of the new file, this saver's alone.
    std::string ownName() const {
        const auto serial = reinterpret_cast<std::uintptr_t>(this);
        return hiddenName(_leaf, kNewPurpose) + std::to_string(getpid()) + "-" +
               std::to_string(serial);
    }

    bool fail(const char* what, int errorNumber) {
        _exists = errorNumber == EEXIST;
        _error = std::string(what) + " \"" + _path + "\": " + std::strerror(errorNumber);
        return false;
    }
    bool link(int from, const char* name, const std::string& newName, int flags);
    bool removeHidden(const std::string& name) {
        return unlinkat(_folder.get(), name.c_str(), 0) == 0 || errno == ENOENT;
    }

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

bool DurableFile::Replacement::open() {
    std::string path = _path;
    if (path.find('\0') != std::string::npos) {
        errno = EINVAL;
        return false;
    }
    if (!_options.onlyNew && !followLinks(path))
        return false;
    const std::size_t slash = path.rfind('/');
    _leaf = path.substr(slash + 1);
    _folderPath = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    if (_leaf.empty()) {
        errno = path.empty() ? ENOENT : EISDIR;
        return false;
    }
    _folder = Descriptor(retryInterrupted(
        [&] { return ::open(_folderPath.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    return _folder && findOldFile() && createNewFile() && copyPermissions();
}

bool DurableFile::Replacement::findOldFile() {
    if (fstatat(_folder.get(), _leaf.c_str(), &_old, AT_SYMLINK_NOFOLLOW) != 0)
        return errno == ENOENT;
    if (_options.onlyNew) {
        errno = EEXIST;
        return false;
    }
    _hasOld = true;
    if (!S_ISREG(_old.st_mode)) {
        errno = S_ISDIR(_old.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    // Renaming over a file asks nobody whether it may be written.
    return faccessat(_folder.get(), _leaf.c_str(), W_OK, AT_EACCESS) == 0;
}

bool DurableFile::Replacement::createNewFile() {
    // Private until it has the old one's owner and mode.
    const mode_t mode = _hasOld ? _old.st_mode & 0700 : 0666;
    _isUnnamed = true;
    _file = Descriptor(retryInterrupted(
        [&] { return openat(_folder.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, mode); }));
    // A file without a name gets one through /proc.
    if (_file && access("/proc/self/fd", X_OK) == 0) {
        lock(_file);
        return true;
    }
    if (!_file && errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL)
        return false;

    _isUnnamed = false;
    return createNamedFile(mode);
}

/// For file systems without unnamed files. Until it is locked, whoever clears up after dead savers
/// may take it for a leftover; then another one is made.
bool DurableFile::Replacement::createNamedFile(mode_t mode) {
    const std::string name = ownName();
    for (int i = 0; i < kMostCollisions; ++i) {
        removeHidden(name);
        _file = Descriptor(retryInterrupted([&] {
            return openat(_folder.get(), name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC,
                          mode);
        }));
        if (!_file)
            return false;
        _newName = name;
        lock(_file);
        struct stat facts {};
        if (fstat(_file.get(), &facts) != 0)
            return false;
        if (facts.st_nlink != 0)
            return true;
    }
    errno = EEXIST;
    return false;
}

bool DurableFile::Replacement::copyPermissions() {
    if (!_hasOld)
        return true;
    struct stat fresh {};
    if (fstat(_file.get(), &fresh) != 0)
        return false;
    // Only a privileged process can give a file away: another one keeps what it may.
    const bool sameOwner = fresh.st_uid == _old.st_uid && fresh.st_gid == _old.st_gid;
    if (!sameOwner && fchown(_file.get(), _old.st_uid, _old.st_gid) != 0 && errno != EPERM)
        return false;
    return fchmod(_file.get(), _old.st_mode & 07777) == 0 && copyAccessList();
}

bool DurableFile::Replacement::copyAccessList() {
    char list[4096];
    const std::string old = _folderPath + "/" + _leaf;
    const ssize_t size = lgetxattr(old.c_str(), kAccessList, list, sizeof list);
    if (size < 0)
        return errno == ENODATA || errno == ENOTSUP;
    return fsetxattr(_file.get(), kAccessList, list, static_cast<std::size_t>(size), 0) == 0;
}

bool DurableFile::Replacement::write(std::string_view bytes) {
    while (!_failed && !bytes.empty()) {
        const ssize_t written =
            retryInterrupted([&] { return ::write(_file.get(), bytes.data(), bytes.size()); });
        if (written <= 0)
            _failed = !fail("cannot write", written < 0 ? errno : EIO);
        else
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    // Large files are on their way to the disk before they are waited for.
    if (_options.onlyNew && !_failed)
        sync_file_range(_file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    return !_failed;
}

bool DurableFile::Replacement::commit() {
    if (_failed)
        return false;
    _failed = true;  // whatever comes, this was the one try
    _isCommitted = replace();
    return _isCommitted || fail("cannot replace", errno);
}

bool DurableFile::Replacement::setTime() {
    if (!_options.modificationTime)
        return true;
    const timespec times[2] = {{0, UTIME_OMIT},
                               {static_cast<time_t>(*_options.modificationTime), 0}};
    return futimens(_file.get(), times) == 0;
}

/// Gives the file its name, if nobody else has it.
bool DurableFile::Replacement::linkNew() {
    if (_isUnnamed) {
        const std::string handle = "/proc/self/fd/" + std::to_string(_file.get());
        return linkat(AT_FDCWD, handle.c_str(), _folder.get(), _leaf.c_str(), AT_SYMLINK_FOLLOW) ==
               0;
    }
    if (linkat(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str(), 0) == 0)
        return true;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return false;
    // Cards have no hard links.
    if (renameat2(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str(),
                  RENAME_NOREPLACE) != 0)
        return false;
    _newName.clear();
    return true;
}

bool DurableFile::Replacement::syncNew() {
    if (_failed)
        return false;
    _failed = true;  // whatever comes, this was the one try
    return (setTime() && sync(_file)) || fail("cannot replace", errno);
}

bool DurableFile::Replacement::nameSyncedFile() {
    _isCommitted = linkNew();
    return _isCommitted || fail("cannot replace", errno);
}

/// For all files that have just been named in this folder, by one of them.
bool DurableFile::Replacement::syncFolder() {
    if (!sync(_folder))
        return false;
    // Where files have no names before, nobody leaves any behind.
    if (!_isUnnamed)
        removeLeftovers();
    return true;
}

void DurableFile::Replacement::giveUp(int reason) {
    _isCommitted = false;
    putBack();
    fail("cannot replace", reason);
}

bool DurableFile::Replacement::replace() {
    if (!setTime() || !sync(_file) || !nameNewFile() || !keepOldFile() || !putInPlace())
        return false;
    if (!sync(_folder)) {
        const int reason = errno;
        putBack();
        errno = reason;
        return false;
    }
    removeLeftovers();
    return true;
}

bool DurableFile::Replacement::sync(const Descriptor& descriptor) {
    if (!_options.sync)
        return true;
    // EINVAL: a file system on which this cannot be asked for; there is no more to be done.
    return retryInterrupted([&] { return fsync(descriptor.get()); }) == 0 || errno == EINVAL;
}

/// Links under a hidden name; what has that name is a leftover or another saver's, who will make
/// his again.
bool DurableFile::Replacement::link(int from, const char* name, const std::string& newName,
                                    int flags) {
    for (int i = 0; i < kMostCollisions; ++i) {
        if (linkat(from, name, _folder.get(), newName.c_str(), flags) == 0)
            return true;
        if (errno != EEXIST || !removeHidden(newName))
            return false;
    }
    return false;
}

bool DurableFile::Replacement::nameNewFile() {
    if (!_isUnnamed)
        return true;
    const std::string handle = "/proc/self/fd/" + std::to_string(_file.get());
    const std::string name = ownName();
    if (!link(AT_FDCWD, handle.c_str(), name, AT_SYMLINK_FOLLOW))
        return false;
    _newName = name;
    return true;
}

bool DurableFile::Replacement::linkOldFile(const std::string& name) {
    if (!link(_folder.get(), _leaf.c_str(), name, 0))
        return false;
    _oldName = name;
    return true;
}

/// The backup, and a way back should the folder not be synced.
bool DurableFile::Replacement::keepOldFile() {
    if (!_hasOld || (!_options.sync && _options.keepOldAs.empty()))
        return true;
    const std::string name = hiddenName(_leaf, "old");
    const auto cannotLink = [] {
        // No hard links here, not to this file, or it is gone by now.
        return errno == EPERM || errno == EOPNOTSUPP || errno == EMLINK || errno == ENOENT;
    };
    if (!linkOldFile(name))
        return cannotLink() && (_options.keepOldAs.empty() || copyOldFile());
    if (_options.keepOldAs.empty())
        return true;
    if (renameat(_folder.get(), name.c_str(), _folder.get(), _options.keepOldAs.c_str()) != 0)
        return false;
    // Renaming one name of a file over another of its names leaves both.
    removeHidden(name);
    _oldName.clear();
    return linkOldFile(name) || cannotLink();
}

bool DurableFile::Replacement::copyOldFile() {
    const Descriptor old(retryInterrupted(
        [&] { return openat(_folder.get(), _leaf.c_str(), O_RDONLY | O_CLOEXEC); }));
    if (!old)
        return errno == ENOENT;
    DurableFile copy(String(_folderPath + "/" + _options.keepOldAs), {.sync = _options.sync});
    const auto buffer = std::make_unique<char[]>(1 << 16);
    for (;;) {
        const ssize_t count =
            retryInterrupted([&] { return read(old.get(), buffer.get(), 1 << 16); });
        if (count < 0)
            return false;
        if (count == 0)
            return copy.commit();
        if (!copy.write({buffer.get(), static_cast<std::size_t>(count)}))
            return false;
    }
}

bool DurableFile::Replacement::putInPlace() {
    if (renameat(_folder.get(), _newName.c_str(), _folder.get(), _leaf.c_str()) != 0)
        return false;
    _newName.clear();
    return true;
}

void DurableFile::Replacement::putBack() {
    if (!_oldName.empty() &&
        renameat(_folder.get(), _oldName.c_str(), _folder.get(), _leaf.c_str()) == 0)
        _oldName.clear();
    else if (!_hasOld)
        unlinkat(_folder.get(), _leaf.c_str(), 0);
}

/// What savers of this file left behind when they were killed: hidden files that nobody holds a
/// lock on. Failing to remove one is no failure of the save.
void DurableFile::Replacement::removeLeftovers() {
    const std::string prefix = hiddenName(_leaf, kNewPurpose);
    const int copy = fcntl(_folder.get(), F_DUPFD_CLOEXEC, 0);
    DIR* entries = copy >= 0 ? fdopendir(copy) : nullptr;
    if (!entries) {
        const Descriptor unused(copy);
        return;
    }
    while (const dirent* entry = readdir(entries))
        if (std::string_view(entry->d_name).starts_with(prefix))
            removeIfAbandoned(entry->d_name);
    closedir(entries);
}

void DurableFile::Replacement::removeIfAbandoned(const char* name) {
    const Descriptor file(
        openat(_folder.get(), name, O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file || flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return;
    // A saver that has just finished may have begun anew under the name.
    struct stat locked {
    }, named{};
    if (fstat(file.get(), &locked) == 0 &&
        fstatat(_folder.get(), name, &named, AT_SYMLINK_NOFOLLOW) == 0 &&
        locked.st_ino == named.st_ino)
        removeHidden(name);
}

void DurableFile::Replacement::removeTraces() {
    if (!_newName.empty())
        removeHidden(_newName);
    if (!_oldName.empty())
        removeHidden(_oldName);
}

DurableFile::DurableFile(const String& path, DurableFileOptions options)
    : _replacement(std::make_unique<Replacement>(path, std::move(options))) {
}

DurableFile::~DurableFile() = default;

bool DurableFile::write(std::string_view bytes) {
    return _replacement->write(bytes);
}

bool DurableFile::commit() {
    if (!_replacement->isOnlyNew())
        return _replacement->commit();
    commitTogether({this});
    return isCommitted();
}

/// The first file's sync takes what is known of the others along, where the system keeps a journal.
void DurableFile::commitTogether(const std::vector<DurableFile*>& files) {
    std::vector<Replacement*> synced;
    for (const DurableFile* file : files)
        if (file->_replacement->syncNew())
            synced.push_back(file->_replacement.get());
    std::map<std::string, std::vector<Replacement*>> folders;
    for (Replacement* file : synced)
        if (file->nameSyncedFile())
            folders[file->folderPath()].push_back(file);
    for (const auto& [folder, named] : folders) {
        if (named.front()->syncFolder())
            continue;
        const int reason = errno;
        for (Replacement* file : named)
            file->giveUp(reason);
    }
}

bool DurableFile::isCommitted() const {
    return _replacement->isCommitted();
}

bool DurableFile::exists() const {
    return _replacement->exists();
}

const std::string& DurableFile::error() const {
    return _replacement->error();
}

bool replaceFileDurably(const String& path, std::string_view bytes,
                        const DurableFileOptions& options, std::string* error) {
    DurableFile file(path, options);
    if (file.write(bytes) && file.commit())
        return true;
    if (error)
        *error = file.error();
    return false;
}

}  // namespace tav::filesystem
