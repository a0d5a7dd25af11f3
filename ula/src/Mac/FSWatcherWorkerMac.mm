// SPDX-License-Identifier: MIT
#include "ula/src/Mac/FSWatcherWorkerMac.h"

#include "ula/NSPathUtil.h"
#include "ula/src/Core/PlatformFSWatcherWorker.h"

namespace tav::ula {

std::shared_ptr<FSWatcherWorker> createPlatformFSWatcherWorker() {
    return std::make_shared<FSWatcherWorkerMac>();
}

FSWatcherWorkerMac::FSWatcherWorkerMac()
    : _kqueue(new FSWatcherWorkerMacKQueue(this)), _fsEvent(new FSWatcherWorkerMacFSEvent(this)) {
}

FSWatcherWorkerMac::~FSWatcherWorkerMac() {
    stopThread();
    _kqueue.reset();
    _fsEvent.reset();
}

bool FSWatcherWorkerMac::startWatching(const std::string& path, bool recursive) {
    return recursive ? _fsEvent->start(path) : _kqueue->start(path);
}

void FSWatcherWorkerMac::stopWatching(const std::string& path) {
    _fsEvent->stop(path);
    _kqueue->stop(path);
}

void FSWatcherWorkerMac::poll() {
    _kqueue->poll();
}

void FSWatcherWorkerMac::setEnabled(bool enabled, const std::string& path) {
    _fsEvent->setEnabled(enabled, path);
    _kqueue->setEnabled(enabled, path);
}

std::string FSWatcherWorkerMac::getOSDebugString() {
    return "FSWatcherWorkerMacKQueue: " + _kqueue->getOSDebugString() + "\n" +
           "FSWatcherWorkerMacFSEvent: " + _fsEvent->getOSDebugString() + "\n";
}

std::string FSWatcherWorkerMac::normalizePath(const std::string& path) {
    return NSPathUtilNameSpace::normalizeMacPathToRoot(path);
}

}  // namespace tav::ula
