// SPDX-License-Identifier: MIT
#include "AppKit/VolumeWatch.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/inotify.h>

namespace appkit {

namespace {

// The kernel tells of a change of the mounts once for each open file, to whoever polls first; a
// poll of the set around it would already take it. What is always readable is told by its edges
// instead, and those stay in the set until somebody takes them from it.
constexpr uint32_t kEdges = EPOLLIN | EPOLLET;

constexpr uint32_t kNames = IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF |
                            IN_MOVE_SELF | IN_ONLYDIR;

bool control(const cf::Descriptor& set, int operation, const cf::Descriptor& member) {
    epoll_event event{};
    event.events = kEdges;
    return epoll_ctl(set.get(), operation, member.get(), &event) == 0;
}

void drain(const cf::Descriptor& events) {
    char bytes[4096];
    while (read(events.get(), bytes, sizeof bytes) > 0) {
    }
}

}  // namespace

VolumeWatch::VolumeWatch(std::string folder)
    : _folder(std::move(folder)),
      _mounts(open("/proc/self/mountinfo", O_RDONLY | O_CLOEXEC)),
      _names(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      _changes(epoll_create1(EPOLL_CLOEXEC)) {
    if (!control(_changes, EPOLL_CTL_ADD, _mounts)) {
        _changes = cf::Descriptor();
        return;
    }
    control(_changes, EPOLL_CTL_ADD, _names);
    watchFolder();
}

void VolumeWatch::take() {
    epoll_event events[2];
    epoll_wait(_changes.get(), events, 2, 0);
    drain(_names);
    watchFolder();
}

void VolumeWatch::repeat() {
    control(_changes, EPOLL_CTL_MOD, _mounts);
}

// The same folder gives the same watch. Another one, such as what was mounted over it, gives a new
// watch, and the old one would only tell of what nobody sees any more.
void VolumeWatch::watchFolder() {
    int watch = inotify_add_watch(_names.get(), _folder.c_str(), kNames);
    if (_watch >= 0 && _watch != watch)
        inotify_rm_watch(_names.get(), _watch);
    _watch = watch;
}

}  // namespace appkit
