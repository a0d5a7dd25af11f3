// SPDX-License-Identifier: MIT
#include "ula/FileSystemWatcher.h"

#include "ula/foundation/debug/Assertion.h"
#include "ula/foundation/debug/Log.h"
#include "ula/foundation/filesystem/FileSystem.h"
#include "ula/src/Core/WorkerInstance.h"

namespace tav::ula {

namespace {

constexpr const char* kSource = "src/Core/FileSystemWatcher";

void unregister(FileSystemWatcher* watcher) {
    if (const auto worker = WorkerInstance::get())
        worker->unregisterWatcher(watcher);
}

}  // namespace

FileSystemWatcher::FileSystemWatcher(const std::string& path, bool recursive) {
    if (!filesystem::exists(path.c_str())) {
        debug::assertionFailed(kSource, 19, "tav::filesystem::exists(path.c_str())");
        return;
    }
    try {
        const WorkerInstance::RegistrationTime registration;
        registration.worker().registerWatcher(this, path, recursive);
    } catch (const std::exception& exception) {
        unregister(this);
        debug::logf(kSource, 1, debug::LogLevelError, "%* cannot be watched: %*")
            .add(path.c_str())
            .add(exception.what());
    }
}

FileSystemWatcher::~FileSystemWatcher() {
    unregister(this);
    WorkerInstance::releaseUnused();
}

void FileSystemWatcher::setEnabled(bool enabled) {
    // A slot may destroy this watcher on the way.
    if (const auto worker = WorkerInstance::get())
        worker->setWatcherEnabled(this, enabled);
}

std::string FileSystemWatcher::getDebugString() {
    const auto worker = WorkerInstance::get();
    return worker ? " - Instance exists" + worker->debugString() : " - no instance\n";
}

}  // namespace tav::ula
