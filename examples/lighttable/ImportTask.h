// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <functional>
#include <string>
#include <thread>
#include <ula/CallOwner.h>
#include <ula/ImportSession.h>

namespace lighttable {

struct ImportOutcome {
    std::size_t imported = 0;
    std::size_t alreadyThere = 0;
    std::size_t failed = 0;
    bool isCancelled = false;
    std::string error;  ///< of the device, or of the first file that failed
};

struct ImportState {
    std::string name;  ///< of the file that is brought over
    std::size_t files = 0;
    std::size_t totalFiles = 0;
    double fraction = 0;
};

/// Brings everything on a device over, on a thread of its own.
/// Thread: main; so are the calls.
class ImportTask {
public:
    struct Events {
        std::function<void(const ImportState&)> progress;
        std::function<void(const ImportOutcome&)> finished;  ///< may destroy the task
    };

    ImportTask(const tav::ula::ImportDevice& device, std::string folder,
               tav::ula::ImportOptions options, Events events);
    /// Cancels, and waits for the end.
    ~ImportTask();
    ImportTask(const ImportTask&) = delete;
    ImportTask& operator=(const ImportTask&) = delete;

    /// `finished` still comes.
    void cancel() { _session.cancel(); }

private:
    void work();
    void tell(const tav::ula::ImportProgress& progress);

    const std::string _folder;
    const tav::ula::ImportOptions _options;
    const Events _events;
    tav::ula::ImportSession _session;
    std::size_t _filesTold = 0;
    std::chrono::steady_clock::time_point _toldAt;
    tav::ula::CallOwner _owner;
    /// Last, as it uses everything above.
    std::thread _thread;
};

}  // namespace lighttable
