// SPDX-License-Identifier: MIT
#pragma once

#include "examples/lighttable/PictureFile.h"
#include "examples/lighttable/Thumbnail.h"

#include <condition_variable>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <ula/CallOwner.h>
#include <vector>

namespace lighttable {

/// Makes thumbnails on threads of its own, those first that are wanted now, and keeps the ones
/// that were used last.
/// Thread: main; so is the call of `loaded`.
class ThumbnailLoader {
public:
    /// In pixels, the longer side.
    static constexpr int kSide = 320;

    using Loaded = std::function<void(const std::string& path)>;

    explicit ThumbnailLoader(Loaded loaded);
    ~ThumbnailLoader();
    ThumbnailLoader(const ThumbnailLoader&) = delete;
    ThumbnailLoader& operator=(const ThumbnailLoader&) = delete;

    /// Null as long as it is not there; empty when the picture cannot be read. Good until the run
    /// loop's next turn.
    const Thumbnail* find(const PictureFile& picture);
    /// Those to be made, in this order; what was wanted before and has not begun is forgotten.
    void want(const std::vector<PictureFile>& pictures);
    /// Whether all that is wanted is there.
    bool isIdle() const;

private:
    struct Entry {
        PictureFile picture;
        Thumbnail thumbnail;
    };
    using Entries = std::list<Entry>;

    void work();
    void receive(const PictureFile& picture, const std::shared_ptr<Thumbnail>& thumbnail);
    void dropOldest();

    const Loaded _loaded;
    Entries _entries;  ///< those used last come first
    std::map<std::string, Entries::iterator> _byPath;
    std::size_t _bytes = 0;

    mutable std::mutex _mutex;
    std::condition_variable _changed;
    std::list<PictureFile> _wanted;
    std::set<std::string> _underWay;  ///< begun, and not received yet
    bool _isEnding = false;
    tav::ula::CallOwner _owner;
    /// Last, as they use everything above.
    std::vector<std::thread> _threads;
};

}  // namespace lighttable
