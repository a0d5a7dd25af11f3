// SPDX-License-Identifier: MIT
#pragma once

#include "ula/Export.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace tav::ula {

/// What is true of an item; the values are fixed.
enum FilePropertyFlags : std::uint32_t {
    /// An alias file whose target is a folder or a disk.
    Alias = 1,
    /// Such an alias whose target could not be found without asking the user.
    UnresolvedAlias = 2,
    /// A symbolic link, or a folder reached through one, that leads elsewhere.
    Link = 4,
    /// Not to be shown.
    Hidden = 8,
    /// The current user may not write it.
    ReadOnly = 16,
    /// A folder; never a link or an alias.
    Directory = 32,
    /// A volume.
    MountPoint = 64,
};

/// The pixels of an icon.
/// Thread: a value; any, one at a time.
struct ULA_API FileIconBitmap {
    /// Copies `bytesPerRow` x `height` bytes from `source`; null leaves the bitmap without pixels.
    /// Units: pixels, bytes, bits. 0 `bytesPerRow` stands for `width`.
    FileIconBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t bytesPerRow,
                   std::uint32_t bitsPerPixel, const void* source = nullptr);
    FileIconBitmap(const FileIconBitmap& other);
    FileIconBitmap& operator=(const FileIconBitmap& other);
    ~FileIconBitmap();

    /// Units: bytes; those of `data` where there is any.
    std::size_t size() const;

    std::uint32_t width;
    std::uint32_t height;
    std::uint32_t bytesPerRow;
    std::uint32_t bitsPerPixel;
    std::unique_ptr<unsigned char[]> data;
};

/// What the file system model knows of one path: its name, the name that the desktop shows for it,
/// where it leads, and a few properties. Filled once, by `create`; a plain value from then on.
/// Texts are UTF-8.
/// Thread: a value; any, one at a time. `create` and `resolveUnresolvedAlias` wait for the disk.
class ULA_API FileProperties {
public:
    FileProperties();
    FileProperties(const FileProperties& other);
    FileProperties(FileProperties&& other) noexcept;
    FileProperties& operator=(const FileProperties& other);
    FileProperties& operator=(FileProperties&& other) noexcept;
    ~FileProperties();

    /// Looks at the item. Fails: what cannot be looked at has its full path, perhaps its name, and
    /// is `Hidden`; nothing is logged.
    static FileProperties create(const std::string& path);

    /// Whether all of these bits are set.
    bool isFlagSet(FilePropertyFlags flags) const { return (_flags & flags) == flags; }
    /// Sets all of these bits or clears all of them; nothing when `isFlagSet` answers `on` already.
    void setFlag(const FilePropertyFlags& flags, const bool& on);

    /// Whether name, title, target path, flags and full path are equal. The icon takes no part.
    bool operator==(const FileProperties& other) const;

    /// Forgets everything but the full path, so that the record still tells what it was of.
    void reset();

    /// Tries again where `UnresolvedAlias` is set, and may mount a volume or ask the user for it.
    /// On success the target path is known and the flag cleared; otherwise nothing changes.
    void resolveUnresolvedAlias();

    /// The last component of the path.
    const std::string& name() const { return _name; }
    /// What the desktop shows; of links and aliases the name.
    const std::string& title() const { return _hasOwnTitle ? _title : _name; }
    /// Where the item leads, or its own path.
    const std::string& targetPath() const { return _hasOwnTarget ? _targetPath : _fullPath; }
    /// The path that `create` was given.
    const std::string& fullPath() const { return _fullPath; }
    std::uint32_t flags() const { return _flags; }
    /// Owner: the record. Null where no icon was taken.
    const FileIconBitmap* icon() const { return _icon.get(); }

    void setName(std::string name);
    void setTitle(std::string title);
    void setTargetPath(std::string path);
    void setFullPath(std::string path);
    void setIcon(std::unique_ptr<FileIconBitmap> icon) { _icon = std::move(icon); }

private:
    void init(const FileProperties& source);

    std::string _name;
    /// Most items are shown by their names and lead nowhere else: one text then stands for both.
    std::string _title;
    std::string _targetPath;
    std::string _fullPath;
    std::uint32_t _flags = 0;
    bool _hasOwnTitle = false;
    bool _hasOwnTarget = false;
    std::unique_ptr<FileIconBitmap> _icon;
};

}  // namespace tav::ula
