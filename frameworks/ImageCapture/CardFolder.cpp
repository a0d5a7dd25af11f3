// SPDX-License-Identifier: MIT
#include "ImageCapture/CardFolder.h"

#include "CoreFoundation/FolderStream.h"
#include "ImageCapture/CopyBytes.h"
#include "ImageCapture/Errors.h"
#include "ImageCapture/ICAApplication.h"

#include <algorithm>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace imagecapture {

namespace {

// Nothing for what is neither a folder nor a plain file, and for what has just gone.
bool describeEntry(int folder, const char* name, Item& item) {
    struct stat info {};
    if (fstatat(folder, name, &info, AT_SYMLINK_NOFOLLOW) != 0)
        return false;
    item.name = name;
    item.isFolder = S_ISDIR(info.st_mode);
    item.size = item.isFolder ? 0 : static_cast<uint64_t>(info.st_size);
    item.modified = info.st_mtime;
    return item.isFolder || S_ISREG(info.st_mode);
}

std::string joined(const std::string& folder, const std::string& name) {
    return folder.empty() ? name : folder + "/" + name;
}

}  // namespace

CardFolder::CardFolder(std::string path) : _path(std::move(path)) {
    struct stat info {};
    if (stat(_path.c_str(), &info) == 0)
        _device = info.st_dev;
}

// Another card in the place of this one has another device.
cf::Descriptor CardFolder::open(const std::string& relativePath, int flags) {
    cf::Descriptor top(::open(_path.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat info {};
    if (!top && errno != ENOENT)
        return cf::Descriptor();
    if (!top || fstat(top.get(), &info) != 0 || info.st_dev != _device) {
        errno = ENODEV;
        return cf::Descriptor();
    }
    open_how how{};
    how.flags = static_cast<uint64_t>(flags | O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    how.resolve = RESOLVE_BENEATH | RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV;
    const char* path = relativePath.empty() ? "." : relativePath.c_str();
    return cf::Descriptor(static_cast<int>(cf::retryInterrupted(
        [&] { return syscall(SYS_openat2, top.get(), path, &how, sizeof how); })));
}

int CardFolder::fail(const std::string& path, int number) {
    _problem = describe("cannot read", path.empty() ? _path : _path + "/" + path, number);
    if (number == EACCES || number == EPERM)
        _problem += "; mount the card so that you may read it";
    return readingError(number);
}

int CardFolder::list(const std::string& folder, std::vector<Item>& items) {
    _problem.clear();
    items.clear();
    cf::Descriptor descriptor = open(folder, O_DIRECTORY);
    if (!descriptor)
        return fail(folder, errno);
    cf::FolderStream entries(fdopendir(descriptor.get()));
    if (!entries)
        return fail(folder, errno);
    int opened = descriptor.release();
    errno = 0;
    while (const dirent* entry = readdir(entries.get())) {
        Item item;
        if (entry->d_name[0] != '.' && describeEntry(opened, entry->d_name, item))
            items.push_back(std::move(item));
        errno = 0;
    }
    if (errno != 0)
        return fail(folder, errno);
    std::sort(items.begin(), items.end(),
              [](const Item& left, const Item& right) { return left.name < right.name; });
    return 0;
}

cf::Descriptor CardFolder::openFile(const std::string& folder, const Item& file) {
    cf::Descriptor opened = open(joined(folder, file.name), O_NOFOLLOW);
    struct stat info {};
    if (opened && (fstat(opened.get(), &info) != 0 || !S_ISREG(info.st_mode))) {
        errno = ENOENT;
        return cf::Descriptor();
    }
    return opened;
}

int CardFolder::read(const std::string& folder, const Item& file, uint64_t offset,
                     std::span<char>& bytes) {
    _problem.clear();
    cf::Descriptor source = openFile(folder, file);
    if (!source)
        return fail(joined(folder, file.name), errno);
    size_t done = 0;
    while (done < bytes.size()) {
        ssize_t count = cf::retryInterrupted([&] {
            return pread(source.get(), bytes.data() + done, bytes.size() - done,
                         static_cast<off_t>(offset + done));
        });
        if (count < 0)
            return fail(joined(folder, file.name), errno);
        if (count == 0)
            break;
        done += static_cast<size_t>(count);
    }
    bytes = bytes.first(done);
    return 0;
}

int CardFolder::copy(const std::string& folder, const Item& file, int descriptor) {
    _problem.clear();
    cf::Descriptor source = openFile(folder, file);
    if (!source)
        return fail(joined(folder, file.name), errno);
    struct stat info {};
    if (fstat(source.get(), &info) != 0)
        return fail(joined(folder, file.name), errno);
    CopyResult result = copyBytes(source.get(), descriptor, static_cast<uint64_t>(info.st_size));
    if (result.readError != 0)
        return fail(joined(folder, file.name), result.readError);
    if (result.writeError != 0) {
        _problem = describe("cannot write the copy of", file.name, result.writeError);
        return writingError(result.writeError);
    }
    if (result.copied == static_cast<uint64_t>(info.st_size))
        return 0;
    _problem = "\"" + file.name + "\" became shorter while it was read";
    return kICAFileCorruptedErr;
}

}  // namespace imagecapture
