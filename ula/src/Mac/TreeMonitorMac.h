// SPDX-License-Identifier: MIT
#pragma once

#include "ula/TreeMonitor.h"
#include "ula/src/Core/SettlingFiles.h"
#include "ula/src/Core/TreeEventReader.h"
#include "ula/src/Mac/CFOwner.h"

#include <CoreServices/CoreServices.h>

#include <memory>

namespace tav::ula {

/// A file-system event stream that tells of single items, on the run loop of the thread that makes
/// it.
class TreeMonitorMac : public TreeMonitor {
public:
    /// The root is absolute and exists.
    TreeMonitorMac(const std::string& root, const TreeMonitorOptions& options);
    ~TreeMonitorMac() override;

    /// Fails: false, logged by the platform.
    bool start();
    /// Why that failed, and what helps.
    std::string refusal() const;
    void flush() override;

private:
    static void receive(ConstFSEventStreamRef stream, void* self, size_t count, void* paths,
                        const FSEventStreamEventFlags* flags, const FSEventStreamEventId* ids);
    static void tellSettled(CFRunLoopTimerRef timer, void* self);

    void handle(const std::vector<ReportedChange>& changes);
    void tell(const std::vector<TreeEvent>& events);
    CFRunLoopTimerRef createTimer();
    void setTimer();

    TreeEventReader _reader;
    SettlingFiles _settling;
    FSEventStreamRef _stream = nullptr;
    const CFOwner<CFRunLoopTimerRef> _timer;
    /// False once this object is gone, for whoever is about to tell something.
    std::shared_ptr<bool> _isAlive = std::make_shared<bool>(true);
};

}  // namespace tav::ula
