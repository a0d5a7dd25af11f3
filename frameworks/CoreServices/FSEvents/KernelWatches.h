// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace fsevents {

// One thing that the kernel has told. IN_MOVED_FROM and IN_MOVED_TO of one move have the same
// cookie.
struct KernelEvent {
    int watch = -1;
    uint32_t mask = 0;
    uint32_t cookie = 0;
    std::string_view name;
};

// The kernel's queue of changes and what feeds it. Watches belong to folders, whatever paths lead
// there: adding a folder again gives the same watch.
class KernelWatches {
public:
    // Fails: null, with errno.
    static std::unique_ptr<KernelWatches> open();
    KernelWatches(const KernelWatches&) = delete;
    KernelWatches& operator=(const KernelWatches&) = delete;
    ~KernelWatches();

    int descriptor() const { return _descriptor; }
    // Fails: -1, with errno.
    int addFolder(int folderDescriptor);
    // As above, for what a path leads to, be it a file.
    int addPath(const char* path, uint32_t mask);
    void remove(int watch);

    // Moves what is waiting in the kernel's queue into memory, where there is room for much more.
    void collect();
    bool isEmpty() const { return _waiting.empty(); }
    // As `collect`, but waits when nothing is there.
    void waitAndCollect(int timeoutMs);
    // Everything that was collected. Owner: `bytes`, of the names.
    std::vector<KernelEvent> take(std::vector<char>& bytes);

    // A forked child must neither read its parent's queue nor change its watches.
    void abandon();

private:
    explicit KernelWatches(int descriptor) : _descriptor(descriptor) {}

    int _descriptor;
    std::vector<char> _waiting;
    // Kept, as clearing fresh memory would cost more than reading.
    std::vector<char> _room;
};

}  // namespace fsevents
