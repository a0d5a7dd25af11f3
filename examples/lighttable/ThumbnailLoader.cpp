// SPDX-License-Identifier: MIT
#include "examples/lighttable/ThumbnailLoader.h"

#include "examples/lighttable/PictureDecoder.h"

#include <algorithm>
#include <ula/MainThreadCaller.h>
#include <ula/ScopedARPool.h>

namespace lighttable {

using namespace tav::ula;

namespace {

/// For all thumbnails together.
constexpr std::size_t kMostBytes = 96u << 20;

/// Half of the processors are left to the windows and to whatever else runs.
unsigned threadCount() {
    return std::clamp(std::thread::hardware_concurrency() / 2, 1u, 4u);
}

}  // namespace

ThumbnailLoader::ThumbnailLoader(Loaded loaded) : _loaded(std::move(loaded)) {
    for (unsigned i = 0; i < threadCount(); ++i)
        _threads.emplace_back([this] { work(); });
}

ThumbnailLoader::~ThumbnailLoader() {
    {
        const std::lock_guard lock(_mutex);
        _isEnding = true;
    }
    _changed.notify_all();
    for (std::thread& thread : _threads)
        thread.join();
}

const Thumbnail* ThumbnailLoader::find(const PictureFile& picture) {
    const auto found = _byPath.find(picture.path);
    if (found == _byPath.end() || found->second->picture != picture)
        return nullptr;
    _entries.splice(_entries.begin(), _entries, found->second);
    return &found->second->thumbnail;
}

void ThumbnailLoader::want(const std::vector<PictureFile>& pictures) {
    {
        const std::lock_guard lock(_mutex);
        _wanted.clear();
        for (const PictureFile& picture : pictures)
            if (!_underWay.contains(picture.path))
                _wanted.push_back(picture);
    }
    _changed.notify_all();
}

bool ThumbnailLoader::isIdle() const {
    const std::lock_guard lock(_mutex);
    return _wanted.empty() && _underWay.empty();
}

void ThumbnailLoader::work() {
    std::unique_lock lock(_mutex);
    for (;;) {
        _changed.wait(lock, [this] { return _isEnding || !_wanted.empty(); });
        if (_isEnding)
            return;
        const PictureFile picture = std::move(_wanted.front());
        _wanted.pop_front();
        _underWay.insert(picture.path);
        lock.unlock();
        {
            const ScopedARPool pool;
            auto thumbnail = std::make_shared<Thumbnail>(decodePicture(picture.path, kSide));
            MainThreadCaller::instance()->callAsyncOwned(
                _owner, [this, picture, thumbnail] { receive(picture, thumbnail); });
        }
        lock.lock();
    }
}

void ThumbnailLoader::receive(const PictureFile& picture,
                              const std::shared_ptr<Thumbnail>& thumbnail) {
    {
        const std::lock_guard lock(_mutex);
        _underWay.erase(picture.path);
    }
    if (const auto before = _byPath.find(picture.path); before != _byPath.end()) {
        _bytes -= before->second->thumbnail.pixels.size();
        _entries.erase(before->second);
        _byPath.erase(before);
    }
    _entries.push_front({picture, std::move(*thumbnail)});
    _byPath[picture.path] = _entries.begin();
    _bytes += _entries.front().thumbnail.pixels.size();
    dropOldest();
    _loaded(picture.path);
}

void ThumbnailLoader::dropOldest() {
    while (_bytes > kMostBytes && _entries.size() > 1) {
        _bytes -= _entries.back().thumbnail.pixels.size();
        _byPath.erase(_entries.back().picture.path);
        _entries.pop_back();
    }
}

}  // namespace lighttable
