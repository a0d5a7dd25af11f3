// SPDX-License-Identifier: MIT
#include "ImageCapture/NewFile.h"

#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>

namespace imagecapture {

namespace {

bool sync(const cf::Descriptor& descriptor) {
    // EINVAL: a file system on which this cannot be asked for.
    return cf::retryInterrupted([&] { return fsync(descriptor.get()); }) == 0 || errno == EINVAL;
}

}  // namespace

NewFile::NewFile(const std::string& folder, const std::string& name) : _name(name) {
    if (!open(folder))
        _error = errno;
}

NewFile::~NewFile() {
    if (!_hiddenName.empty())
        unlinkat(_folder.get(), _hiddenName.c_str(), 0);
}

bool NewFile::open(const std::string& folder) {
    _folder = cf::Descriptor(cf::retryInterrupted(
        [&] { return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
    if (!_folder)
        return false;
    struct stat info {};
    if (fstatat(_folder.get(), _name.c_str(), &info, AT_SYMLINK_NOFOLLOW) == 0) {
        errno = EEXIST;
        return false;
    }
    if (errno != ENOENT)
        return false;
    _file = cf::Descriptor(cf::retryInterrupted(
        [&] { return openat(_folder.get(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666); }));
    // It is to get its name through /proc.
    if (_file && access("/proc/self/fd", X_OK) == 0)
        return true;
    bool hasNoUnnamed = _file || errno == EOPNOTSUPP || errno == EISDIR || errno == EINVAL;
    return hasNoUnnamed && createNamed();
}

// The name says whose it is, so that what a killed process left behind is taken by the next one
// that has its number.
bool NewFile::createNamed() {
    static unsigned serial = 0;
    std::string name = ".ula-import-" + std::to_string(getpid()) + "-" +
                       std::to_string(__sync_add_and_fetch(&serial, 1));
    unlinkat(_folder.get(), name.c_str(), 0);
    _file = cf::Descriptor(cf::retryInterrupted([&] {
        return openat(_folder.get(), name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666);
    }));
    if (_file)
        _hiddenName = name;
    return static_cast<bool>(_file);
}

bool NewFile::setModified(int64_t seconds) {
    timespec times[2] = {{0, UTIME_OMIT}, {static_cast<time_t>(seconds), 0}};
    return futimens(_file.get(), times) == 0;
}

bool NewFile::publish() {
    return sync(_file) && giveName() && sync(_folder);
}

bool NewFile::giveName() {
    if (!_hiddenName.empty())
        return moveToName();
    std::string handle = "/proc/self/fd/" + std::to_string(_file.get());
    return linkat(AT_FDCWD, handle.c_str(), _folder.get(), _name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool NewFile::moveToName() {
    if (renameat2(_folder.get(), _hiddenName.c_str(), _folder.get(), _name.c_str(),
                  RENAME_NOREPLACE) == 0) {
        _hiddenName.clear();
        return true;
    }
    // Where that is not known either there are links, which do not replace.
    return errno == EINVAL &&
           linkat(_folder.get(), _hiddenName.c_str(), _folder.get(), _name.c_str(), 0) == 0;
}

}  // namespace imagecapture
