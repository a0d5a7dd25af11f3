// SPDX-License-Identifier: MIT
// Has a Qt event loop serve the calling thread's run loop, so that calls onto the main thread,
// timers and notifications arrive in a Qt application, in modal dialogs too. Only this header needs
// Qt (its Core module, 5 or 6); the library does not link it.
#pragma once

#include <CoreFoundation/RunLoopIntegration.h>
#include <QObject>
#include <QSocketNotifier>

namespace tav::ula {

/// Serves the run loop of the thread that makes it for as long as it lives.
///
/// Thread: make and destroy it on the thread whose event loop is to serve, after the application
/// object was made. Exceptions of call-backs end the program, as Qt cannot pass them on.
class QtRunLoop {
public:
    QtRunLoop()
        : _runLoop(CFRunLoopGetCurrent()),
          _notifier(ULARunLoopGetDescriptor(_runLoop), QSocketNotifier::Read) {
        CFRunLoopRef runLoop = _runLoop;
        QObject::connect(&_notifier, &QSocketNotifier::activated,
                         [runLoop]() noexcept { ULARunLoopServe(runLoop); });
    }
    QtRunLoop(const QtRunLoop&) = delete;
    QtRunLoop& operator=(const QtRunLoop&) = delete;

private:
    CFRunLoopRef _runLoop;
    QSocketNotifier _notifier;
};

}  // namespace tav::ula
