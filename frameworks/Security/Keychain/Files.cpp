// SPDX-License-Identifier: MIT
#include "Security/Keychain/Files.h"

#include "CoreFoundation/WholeContent.h"
#include "Security/Keychain/Note.h"
#include "Security/SecBase.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>

namespace security {

using cf::retryInterrupted;

namespace {

constexpr mode_t kOthers = S_IRWXG | S_IRWXO;
constexpr mode_t kOthersWrite = S_IWGRP | S_IWOTH;

cf::Descriptor openFile(const std::string& path, int flags) {
    return cf::Descriptor(retryInterrupted(
        [&] { return ::open(path.c_str(), flags | O_CLOEXEC, S_IRUSR | S_IWUSR); }));
}

bool readAll(int file, std::uint8_t* to, std::size_t size) {
    while (size > 0) {
        const ssize_t count = retryInterrupted([&] { return ::read(file, to, size); });
        if (count < 0)
            return false;
        if (count == 0) {
            errno = EIO;  // it was cut while it was read
            return false;
        }
        to += count;
        size -= static_cast<std::size_t>(count);
    }
    return true;
}

bool sync(int file) {
    return retryInterrupted([&] { return fsync(file); }) == 0;
}

bool syncFolderOf(const std::string& path) {
    const cf::Descriptor folder =
        openFile(path.substr(0, path.rfind('/') + 1), O_RDONLY | O_DIRECTORY);
    return folder && sync(folder.get());
}

bool writeNewFile(const std::string& path, std::string_view content) {
    const cf::Descriptor file = openFile(path, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW);
    return file && cf::writeAll(file.get(), content) && sync(file.get());
}

OSStatus refuse(const std::string& path, const char* reason) {
    note("keychain: " + path + " is refused: " + reason);
    return errSecAuthFailed;
}

// Why it cannot be opened. A file of another user's, left by sudo for instance, is not missing.
OSStatus openFailure(const std::string& path, int errorNumber) {
    switch (errorNumber) {
    case ELOOP:
        return refuse(path, "it is a symbolic link");
    case EACCES:
    case EPERM:
        return refuse(path, "this user may not read it");
    default:
        return statusOf(errorNumber);
    }
}

// Does not wait for who might write to a pipe of that name. Fails: what is no file is refused.
OSStatus openToRead(const std::string& path, int flags, cf::Descriptor& file, struct stat& facts) {
    file = openFile(path, O_RDONLY | O_NONBLOCK | flags);
    if (!file || fstat(file.get(), &facts) != 0)
        return openFailure(path, errno);
    return S_ISREG(facts.st_mode) ? OSStatus(errSecSuccess) : refuse(path, "it is no file");
}

}  // namespace

OSStatus statusOf(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
        return errSecItemNotFound;
    case EACCES:
    case EPERM:
    case EROFS:
        return errSecReadOnly;
    case ENOSPC:
    case EDQUOT:
        return errSecDiskFull;
    case ENOMEM:
        return errSecAllocate;
    default:
        return errSecIO;
    }
}

OSStatus makePrivateFolder(const std::string& folder) {
    struct stat facts {};
    if (stat(folder.c_str(), &facts) != 0) {
        std::error_code error;
        std::filesystem::create_directories(std::filesystem::path(folder).parent_path(), error);
        if (error)
            return statusOf(error.value());
        if (mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST)
            return statusOf(errno);
        if (stat(folder.c_str(), &facts) != 0)
            return statusOf(errno);
    }
    if (facts.st_uid != geteuid())
        return refuse(folder, "it belongs to another user");
    if ((facts.st_mode & kOthersWrite) != 0)
        return refuse(folder, "others may write in it; chmod 700 mends that");
    return errSecSuccess;
}

FolderLock::FolderLock(const std::string& folder, const char* name) {
    _status = makePrivateFolder(folder);
    if (_status != errSecSuccess)
        return;
    _file = openFile(folder + "/" + name, O_RDWR | O_CREAT | O_NOFOLLOW);
    if (!_file || retryInterrupted([&] { return flock(_file.get(), LOCK_EX); }) != 0)
        _status = statusOf(errno);
}

OSStatus readFile(const std::string& path, std::string& content) {
    cf::Descriptor file;
    struct stat facts {};
    const OSStatus status = openToRead(path, 0, file, facts);
    if (status != errSecSuccess)
        return status;
    content.resize(static_cast<std::size_t>(facts.st_size));
    auto* const bytes = reinterpret_cast<std::uint8_t*>(content.data());
    return readAll(file.get(), bytes, content.size()) ? errSecSuccess : statusOf(errno);
}

OSStatus readPrivateFile(const std::string& path, SecretBytes& content) {
    cf::Descriptor file;
    struct stat facts {};
    const OSStatus status = openToRead(path, O_NOFOLLOW, file, facts);
    if (status != errSecSuccess)
        return status;
    if (facts.st_uid != geteuid())
        return refuse(path, "it belongs to another user");
    if ((facts.st_mode & kOthers) != 0)
        return refuse(path, "others may use it; chmod 600 mends that");
    SecretBytes bytes(static_cast<std::size_t>(facts.st_size));
    if (!readAll(file.get(), bytes.data(), bytes.size()))
        return statusOf(errno);
    content = std::move(bytes);
    return errSecSuccess;
}

OSStatus replaceFile(const std::string& path, std::string_view content) {
    // One writer at a time: what has the name was left by one who was killed.
    const std::string newPath = path + ".new";
    if (writeNewFile(newPath, content) && rename(newPath.c_str(), path.c_str()) == 0)
        return syncFolderOf(path) ? errSecSuccess : statusOf(errno);
    const OSStatus status = statusOf(errno);
    unlink(newPath.c_str());
    return status;
}

OSStatus keepAside(const std::string& path, std::string& newPath) {
    for (int number = 1;; ++number) {
        newPath = path + ".damaged-" + std::to_string(number);
        if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, newPath.c_str(), RENAME_NOREPLACE) == 0)
            return syncFolderOf(path) ? errSecSuccess : statusOf(errno);
        if (errno != EEXIST)
            return statusOf(errno);
    }
}

}  // namespace security
