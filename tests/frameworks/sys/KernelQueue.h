// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <sys/event.h>
#include <sys/fcntl.h>
#include <unistd.h>

namespace tav::test {

constexpr std::uint32_t kAllNotes = 0x7f;

/// A queue as a program uses it.
class KernelQueue {
public:
    ~KernelQueue() { close(descriptor); }

    /// Asks for events of the descriptor; the error's number, or 0.
    int add(int item, std::uint32_t notes = kAllNotes, int flags = EV_ADD | EV_CLEAR) const {
        return change(item, notes, flags);
    }
    int remove(int item) const { return change(item, 0, EV_DELETE); }
    int change(int item, std::uint32_t notes, int flags) const {
        struct kevent wanted {};
        EV_SET(&wanted, static_cast<uintptr_t>(item), EVFILT_VNODE,
               static_cast<std::uint16_t>(flags), notes, 0, nullptr);
        return kevent(descriptor, &wanted, 1, nullptr, 0, nullptr) == 0 ? 0 : errno;
    }
    /// The notes of the next event that is there, or 0.
    std::uint32_t notes() const {
        const timespec now{0, 0};
        return next(now).fflags;
    }
    /// What happened to the item; waits.
    std::uint32_t awaited() const {
        const timespec deadline{30, 0};
        return next(deadline).fflags;
    }
    struct kevent next(const timespec& timeout) const {
        struct kevent event {};
        return kevent(descriptor, nullptr, 0, &event, 1, &timeout) == 1 ? event : (struct kevent){};
    }

    const int descriptor = kqueue();
};

/// A descriptor that only watches.
class OpenItem {
public:
    explicit OpenItem(const std::string& path) : _descriptor(open(path.c_str(), O_EVTONLY)) {}
    ~OpenItem() { close(); }
    OpenItem(const OpenItem&) = delete;
    OpenItem& operator=(const OpenItem&) = delete;

    void close() {
        if (_descriptor >= 0)
            ::close(_descriptor);
        _descriptor = -1;
    }
    operator int() const { return _descriptor; }

private:
    int _descriptor;
};

}  // namespace tav::test
