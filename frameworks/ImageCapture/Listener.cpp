// SPDX-License-Identifier: MIT
#include "ImageCapture/Listener.h"

#include <algorithm>
#include <sys/epoll.h>

namespace imagecapture {

// An exception of who is told ends the turn; there may be more to tell.
class Listener::Turn {
public:
    explicit Turn(Listener& listener) : _listener(listener) { _listener._isTelling = true; }
    ~Turn() {
        _listener._isTelling = false;
        if (!_isDone)
            _listener.lookAgain();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    void done() { _isDone = true; }

private:
    Listener& _listener;
    bool _isDone = false;
};

Listener::Listener(Devices& devices, std::vector<DeviceFacts> known, Tell tell)
    : _devices(devices),
      _tell(std::move(tell)),
      _source(_watch.descriptor(), EPOLLIN, [this](std::uint32_t) { look(); }) {
    for (const DeviceFacts& device : known)
        _told.push_back(device.number);
    if (!isValid())
        return;
    _source.schedule(CFRunLoopGetCurrent(), kCFRunLoopCommonModes);
    lookAgain();
}

// One who runs the loop while he is told hears of the rest when he has returned.
void Listener::look() {
    _watch.take();
    if (_isTelling)
        return;
    _devices.scan();
    while (tellNext()) {
    }
}

// Devices that have gone come first: another may stand in their place.
bool Listener::tellNext() {
    std::vector<ObjectNumber> now;
    for (const DeviceFacts& device : _devices.known())
        now.push_back(device.number);
    auto isIn = [](const std::vector<ObjectNumber>& numbers) {
        return [&numbers](ObjectNumber number) {
            return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
        };
    };
    auto gone = std::find_if_not(_told.begin(), _told.end(), isIn(now));
    auto added = std::find_if_not(now.begin(), now.end(), isIn(_told));
    bool isAdded = gone == _told.end();
    if (isAdded && added == now.end())
        return false;
    ObjectNumber number = isAdded ? *added : *gone;
    if (isAdded)
        _told.push_back(number);
    else
        _told.erase(gone);
    Turn turn(*this);
    _tell(number, isAdded);
    turn.done();
    return true;
}

}  // namespace imagecapture
