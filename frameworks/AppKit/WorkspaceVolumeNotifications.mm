// SPDX-License-Identifier: MIT
// GNUstep's workspace never says that a volume was mounted or unmounted. Its notification centre
// does so from the moment that somebody first asks for it, on the main run loop.
#import <AppKit/AppKit.h>

#include "AppKit/ToldVolumes.h"
#include "AppKit/VolumeNotifications.h"
#include "AppKit/VolumeWatch.h"
#include "CoreFoundation/AutoreleasePool.h"
#include "CoreFoundation/RunLoopDescriptor.h"
#include "CoreServices/MountSerials.h"
#include "Foundation/ReplaceMethod.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <pthread.h>
#include <sys/epoll.h>

using appkit::ToldVolumes;
using appkit::Volume;
using appkit::VolumeChange;
using appkit::VolumeWatch;
using coreservices::MountList;

namespace {

constexpr char kVolumes[] = "/Volumes";

using NotificationCenter = NSNotificationCenter* (*)(id, SEL);

NotificationCenter originalNotificationCenter = nullptr;
thread_local const std::vector<std::string>* beingTold = nullptr;

void post(const VolumeChange& change) {
    NSString* path = [NSString stringWithUTF8String:change.path.c_str()];
    // Bytes that are no text are listed by nobody, either.
    if (path == nil)
        return;
    bool isMounted = change.kind == VolumeChange::Kind::Mounted;
    NSWorkspace* workspace = [NSWorkspace sharedWorkspace];
    NSNotification* notification = [NSNotification
        notificationWithName:isMounted ? NSWorkspaceDidMountNotification
                                       : NSWorkspaceDidUnmountNotification
                      object:workspace
                    userInfo:[NSDictionary dictionaryWithObject:path forKey:@"NSDevicePath"]];
    // The workspace's own method would also tell the user's other programs, which watch the mounts
    // themselves.
    SEL selector = @selector(postNotification:);
    auto postHere = reinterpret_cast<void (*)(id, SEL, NSNotification*)>(
        class_getMethodImplementation([NSNotificationCenter class], selector));
    postHere(originalNotificationCenter(workspace, @selector(notificationCenter)), selector,
             notification);
}

std::vector<Volume> withSerials(std::vector<Volume> volumes) {
    const std::map<uint64_t, uint64_t> serials = coreservices::mountSerials();
    for (Volume& volume : volumes)
        if (auto found = serials.find(volume.mount.id); found != serials.end())
            volume.serial = found->second;
    return volumes;
}

std::vector<Volume> volumesOf(const MountList& mounts) {
    return withSerials(appkit::mountedVolumes(*mounts, kVolumes));
}

class Notifier {
public:
    // Never destroyed: threads may list volumes until the very end.
    static Notifier& instance() {
        static auto* notifier = new Notifier;
        return *notifier;
    }

    void volumesWereListed(const std::vector<Volume>& volumes);
    // Does nothing where it has been done in this process.
    void start();

private:
    class Telling;

    Notifier();
    bool isStarted();
    // Leaves in its arguments what is to be destroyed. False when another thread was faster.
    bool take(std::unique_ptr<VolumeWatch>& watch, std::unique_ptr<cf::RunLoopDescriptor>& source,
              std::vector<Volume> now);
    // These two on the main thread.
    void tellChanges();
    bool tellNextChange();

    std::mutex _mutex;
    std::optional<std::vector<Volume>> _listed;  // until the start
    pid_t _process = 0;                          // the one that watches
    std::unique_ptr<VolumeWatch> _watch;
    std::unique_ptr<cf::RunLoopDescriptor> _source;
    ToldVolumes _told;
    bool _isTelling = false;
};

// For the time of one notification: the thread finds the volumes as that one leaves them.
class Notifier::Telling {
public:
    Telling(Notifier& notifier, const VolumeChange& change, const MountList& mounts)
        : _notifier(notifier), _view(mounts) {
        beingTold = &change.told;
        _notifier._isTelling = true;
    }
    ~Telling() {
        beingTold = nullptr;
        _notifier._isTelling = false;
        // An exception of a listener ends the turn; other changes may be left to tell.
        if (!_isDone)
            _notifier._watch->repeat();
    }
    Telling(const Telling&) = delete;
    Telling& operator=(const Telling&) = delete;

    void done() { _isDone = true; }

private:
    Notifier& _notifier;
    coreservices::MountView _view;
    bool _isDone = false;
};

// A child that is forked while another thread starts would find the lock held for ever.
Notifier::Notifier() {
    pthread_atfork([] { instance()._mutex.lock(); }, [] { instance()._mutex.unlock(); },
                   [] { instance()._mutex.unlock(); });
}

void Notifier::volumesWereListed(const std::vector<Volume>& volumes) {
    std::lock_guard lock(_mutex);
    if (_process == 0)
        _listed = withSerials(volumes);
}

// A child's own watch takes the place of its parent's; what it has been told stays true. No other
// lock is taken under this object's, as a fork takes them all in an order of its own.
void Notifier::start() {
    if (isStarted())
        return;
    auto watch = std::make_unique<VolumeWatch>(kVolumes);
    if (watch->descriptor() < 0) {
        fprintf(stderr, "NSWorkspace: volumes are not watched: %s\n", strerror(errno));
        return;
    }
    auto source = std::make_unique<cf::RunLoopDescriptor>(watch->descriptor(), EPOLLIN,
                                                          [this](uint32_t) { tellChanges(); });
    cf::RunLoopDescriptor& added = *source;
    std::vector<Volume> now = volumesOf(coreservices::currentMounts());
    if (take(watch, source, std::move(now)))
        added.schedule(CFRunLoopGetMain(), kCFRunLoopCommonModes);
}

bool Notifier::isStarted() {
    std::lock_guard lock(_mutex);
    return _process == getpid();
}

bool Notifier::take(std::unique_ptr<VolumeWatch>& watch,
                    std::unique_ptr<cf::RunLoopDescriptor>& source, std::vector<Volume> now) {
    std::lock_guard lock(_mutex);
    if (_process == getpid())
        return false;
    if (_process == 0)
        _told.begin(_listed ? *std::exchange(_listed, std::nullopt) : std::move(now));
    _process = getpid();
    _watch.swap(watch);
    _source.swap(source);
    return true;
}

void Notifier::tellChanges() {
    cf::AutoreleasePool pool;
    _watch->take();
    // A listener that runs the loop is still to return: the others must hear of its change first.
    if (_isTelling)
        return;
    while (tellNextChange()) {
    }
}

bool Notifier::tellNextChange() {
    MountList mounts = coreservices::currentMounts();
    std::optional<VolumeChange> change = _told.next(volumesOf(mounts));
    if (!change)
        return false;
    Telling telling(*this, *change, mounts);
    post(*change);
    telling.done();
    return true;
}

NSNotificationCenter* notificationCenter(id self, SEL selector) {
    Notifier::instance().start();
    return originalNotificationCenter(self, selector);
}

}  // namespace

namespace appkit {

void volumesWereListed(const std::vector<Volume>& volumes) {
    Notifier::instance().volumesWereListed(volumes);
}

const std::vector<std::string>* volumesBeingTold() {
    return beingTold;
}

}  // namespace appkit

@interface ULAWorkspaceVolumeNotifications : NSObject
@end

@implementation ULAWorkspaceVolumeNotifications

+ (void)load {
    originalNotificationCenter = foundation::replaceInstanceMethod(
        "NSWorkspace", @selector(notificationCenter), notificationCenter);
}

@end
