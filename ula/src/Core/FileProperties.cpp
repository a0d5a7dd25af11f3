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
    return _name == other._name && _title == other._title && _targetPath == other._targetPath &&
           _flags == other._flags && _fullPath == other._fullPath;
}

void FileProperties::reset() {
    _name.clear();
    _title.clear();
    _targetPath.clear();
    _flags = 0;
    _icon.reset();
}

}  // namespace tav::ula
