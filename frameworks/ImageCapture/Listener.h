// SPDX-License-Identifier: MIT
#pragma once

#include "CoreFoundation/RunLoopDescriptor.h"
#include "ImageCapture/DeviceWatch.h"
#include "ImageCapture/Devices.h"

#include <functional>

namespace imagecapture {

// Tells one who has registered which devices come and go, one at a time, on the run loop of the
// thread that made it.
class Listener {
public:
    using Tell = std::function<void(ObjectNumber device, bool isAdded)>;

    // `known` is what he has been told of otherwise.
    Listener(Devices& devices, std::vector<DeviceFacts> known, Tell tell);
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    // Whether there is something to listen to.
    bool isValid() const { return _watch.descriptor() >= 0; }
    // Has the devices looked at soon. Thread: any.
    void lookAgain() { _watch.repeat(); }

private:
    class Turn;

    void look();
    bool tellNext();

    Devices& _devices;
    std::vector<ObjectNumber> _told;
    Tell _tell;
    bool _isTelling = false;
    DeviceWatch _watch;
    cf::RunLoopDescriptor _source;
};

}  // namespace imagecapture
