// SPDX-License-Identifier: MIT
#include "ula/src/Mac/DriveWatcherMac.h"

#include <algorithm>
#include <exception>
#include <iterator>

namespace tav::ula {

namespace {

/// Those that are not among the others.
std::vector<Drive> missing(const std::vector<Drive>& drives, const std::vector<Drive>& others) {
    std::vector<Drive> result;
    std::copy_if(drives.begin(), drives.end(), std::back_inserter(result),
                 [&](const Drive& drive) { return !Drive::contains(others, drive); });
    return result;
}

}  // namespace

DriveWatcher* DriveWatcher::create() {
    return new DriveWatcherMac;
}

DriveWatcherMac::DriveWatcherMac() : _knownDrives(Drive::drives()) {
    _observer = [[DriveWatcherNotificationObserver alloc] init:this];
}

DriveWatcherMac::~DriveWatcherMac() {
    [_observer forgetWatcher];
    [_observer release];
}

void DriveWatcherMac::deviceMounted(const std::string&) {
    std::vector<Drive> current = Drive::drives();
    const std::vector<Drive> added = missing(current, _knownDrives);
    tell(driveMounted, added, std::move(current));
}

void DriveWatcherMac::deviceUnMounted(const std::string&) {
    std::vector<Drive> current = Drive::drives();
    const std::vector<Drive> gone = missing(_knownDrives, current);
    tell(driveUnmounted, gone, std::move(current));
}

void DriveWatcherMac::tell(const Signal& signal, const std::vector<Drive>& changed,
                           std::vector<Drive> current) {
    // The slots may delete this object, and the signal with it.
    const std::weak_ptr<const bool> life = _life;
    const auto slots = boost::signals2::slot<void()>([] {}).track(signal).lock();
    std::exception_ptr exception;
    for (const Drive& drive : changed) {
        try {
            signal(drive);
        } catch (...) {
            exception = std::current_exception();
            // One that is not of C++ cannot be carried.
            if (!exception)
                throw;
        }
        if (life.expired())
            break;
    }
    if (!life.expired())
        _knownDrives = std::move(current);
    if (exception)
        std::rethrow_exception(exception);
}

}  // namespace tav::ula
