// SPDX-License-Identifier: MIT
#include "ula/FileProperties.h"

#include <utility>

namespace tav::ula {

FileProperties::FileProperties() = default;

FileProperties::FileProperties(const FileProperties& other) {
    init(other);
}

FileProperties::FileProperties(FileProperties&& other) noexcept = default;

FileProperties& FileProperties::operator=(const FileProperties& other) {
    if (this != &other)
        init(other);
    return *this;
}

FileProperties& FileProperties::operator=(FileProperties&& other) noexcept = default;

FileProperties::~FileProperties() = default;

void FileProperties::init(const FileProperties& source) {
    reset();
    _name = source._name;
    _title = source._title;
    _targetPath = source._targetPath;
    _fullPath = source._fullPath;
    _flags = source._flags;
    _hasOwnTitle = source._hasOwnTitle;
    _hasOwnTarget = source._hasOwnTarget;
    if (source._icon != nullptr)
        _icon = std::make_unique<FileIconBitmap>(*source._icon);
}

void FileProperties::setFlag(const FilePropertyFlags& flags, const bool& on) {
    if (isFlagSet(flags) == on)
        return;
    if (on)
        _flags |= flags;
    else
        _flags &= ~std::uint32_t{flags};
}

bool FileProperties::operator==(const FileProperties& other) const {
    return name() == other.name() && title() == other.title() &&
           targetPath() == other.targetPath() && _flags == other._flags &&
           fullPath() == other.fullPath();
}

void FileProperties::setName(std::string name) {
    std::string kept = title();
    _name = std::move(name);
    setTitle(std::move(kept));
}

void FileProperties::setTitle(std::string title) {
    _hasOwnTitle = title != _name;
    _title = _hasOwnTitle ? std::move(title) : std::string();
}

void FileProperties::setTargetPath(std::string path) {
    _hasOwnTarget = path != _fullPath;
    _targetPath = _hasOwnTarget ? std::move(path) : std::string();
}

void FileProperties::setFullPath(std::string path) {
    std::string kept = targetPath();
    _fullPath = std::move(path);
    setTargetPath(std::move(kept));
}

void FileProperties::reset() {
    _name.clear();
    setTitle({});
    setTargetPath({});
    _flags = 0;
    _icon.reset();
}

}  // namespace tav::ula
