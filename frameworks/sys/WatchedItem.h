// SPDX-License-Identifier: MIT
#pragma once

#include "sys/event.h"

#include <memory>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace kernelqueue {

struct Inode {
    dev_t device = 0;
    ino_t number = 0;
    bool operator==(const Inode&) const = default;
};

/// The file or folder behind one descriptor of one queue: what is asked of it, what was seen of it,
/// and what that means.
///
/// A descriptor that was opened for watching only is replaced, under its number, by a socket that
/// leads nowhere. From then on the item is known by its watch and, for what a watch does not tell,
/// by the path that it had.
class WatchedItem {
public:
    /// Fails: null, and why in errno.
    static std::unique_ptr<WatchedItem> openedAs(int descriptor);

    int descriptor() const { return _descriptor; }
    /// Whether the descriptor's number still stands for this item.
    bool isOpen() const;
    /// Exchanges a descriptor that only watches. Fails: false, and why in errno.
    bool letGo();
    /// Whether the descriptor holds the item, which then outlives its last name.
    bool isHeld() const { return !_token; }
    bool isFolder() const { return S_ISDIR(_facts.st_mode); }

    /// What inotify is to tell; the same for every descriptor of an item.
    std::uint32_t watchMask() const;
    int watch() const { return _watch; }
    void setWatch(int watch) { _watch = watch; }

    void ask(const struct kevent& change);
    void stopAsking();
    bool isAsked() const { return _isAsked; }

    /// Takes a part of an inotify event; true for the first one since `conclude`.
    bool see(std::uint32_t mask);
    /// Takes that nobody knows what has happened; as `see`.
    bool seeAnything();
    /// Whether a held folder has lost its name since the last look; inotify tells nothing of it.
    bool wasJustRemoved() const;
    /// Looks at what was seen; true when it makes the item pending.
    bool conclude();

    bool isPending() const { return _pending != 0; }
    struct kevent event() const;
    /// True when the event stays pending after it was returned.
    bool staysAfterReturn();

private:
    explicit WatchedItem(int descriptor) : _descriptor(descriptor) {}

    void rememberPath();
    bool isNameless() const { return _facts.st_nlink == 0; }
    bool leadsToItem(const std::string& path, struct stat& facts) const;
    std::optional<struct stat> look() const;
    std::uint32_t notesOfMask() const;
    std::uint32_t notesOfLook();
    bool hasLostItsName() const;

    const int _descriptor;
    struct stat _facts {};
    /// What the descriptor was exchanged for.
    std::optional<Inode> _token;
    /// Empty when it is not known.
    std::string _path;
    /// The folder in which the path lies.
    Inode _folder;
    int _watch = -1;

    bool _isAsked = false;
    std::uint16_t _flags = 0;
    std::uint32_t _wanted = 0;
    void* _user = nullptr;

    std::uint32_t _seen = 0;
    bool _isUncertain = false;
    std::uint32_t _pending = 0;
};

}  // namespace kernelqueue
