// SPDX-License-Identifier: MIT
#include "RunLoopHost.h"

#include "../AutoreleasePool.h"
#include "ModeName.h"
#include "RunLoop.h"

#include <dlfcn.h>

/// What NSRunLoop reports to. It is not retained there, so it is never freed before its thread
/// ends.
@interface ULARunLoopWatcher : NSObject <RunLoopEvents> {
    cf::RunLoop* _loop;
    NSRunLoop* _host;
}
- (id)initWithLoop:(cf::RunLoop*)loop host:(NSRunLoop*)host;
- (void)forgetLoop;
@end

@implementation ULARunLoopWatcher

- (id)initWithLoop:(cf::RunLoop*)loop host:(NSRunLoop*)host {
    self = [super init];
    if (self != nil) {
        _loop = loop;
        _host = host;
    }
    return self;
}

- (void)forgetLoop {
    _loop = nullptr;
}

- (void)receivedEvent:(void*)data
                 type:(RunLoopEventType)type
                extra:(void*)extra
              forMode:(NSString*)mode {
    (void)data, (void)type, (void)extra;
    if (_loop != nullptr)
        _loop->hostIsReady(cf::modeName(reinterpret_cast<CFStringRef>(mode)));
}

// Asked before every wait. Saying no with the trigger set makes the loop report at once.
- (BOOL)runLoopShouldBlock:(BOOL*)trigger {
    CFStringRef mode = cf::modeName(reinterpret_cast<CFStringRef>([_host currentMode]));
    *trigger = _loop != nullptr && !_loop->hostMayWait(mode);
    return !*trigger;
}

@end

namespace cf {

namespace {

NSString* text(CFStringRef string) {
    return reinterpret_cast<NSString*>(const_cast<__CFString*>(string));
}

void* handle(int descriptor) {
    return reinterpret_cast<void*>(static_cast<intptr_t>(descriptor));
}

// Asked of the dynamic linker, as programs without windows do not load AppKit.
bool isApplication() {
    auto* application = static_cast<id*>(dlsym(RTLD_DEFAULT, "NSApp"));
    return application != nullptr && *application != nil;
}

class RunLoopHost final : public HostLoop {
public:
    explicit RunLoopHost(RunLoop& loop)
        : _runLoop(loop),
          _loop([NSRunLoop currentRunLoop]),
          _isMain([NSThread isMainThread]),
          _watcher([[ULARunLoopWatcher alloc] initWithLoop:&loop host:_loop]) {}
    ~RunLoopHost() override {
        [_watcher forgetLoop];
        [_watcher release];
    }
    RunLoopHost(const RunLoopHost&) = delete;
    RunLoopHost& operator=(const RunLoopHost&) = delete;

    void watch(int descriptor, CFStringRef mode) override;
    bool pass(CFStringRef mode, bool mayWait) override;
    void report(CFStringRef mode) override;
    bool hasInputBeside(std::span<const int> descriptors, CFStringRef mode) override;

private:
    RunLoop& _runLoop;
    NSRunLoop* _loop;
    bool _isMain;
    ULARunLoopWatcher* _watcher;
};

void RunLoopHost::watch(int descriptor, CFStringRef mode) {
    if (descriptor < 0)
        return;
    AutoreleasePool pool;
    [_loop addEvent:handle(descriptor) type:ET_RDESC watcher:_watcher forMode:text(mode)];
}

bool RunLoopHost::pass(CFStringRef mode, bool mayWait) {
    // Always without a limit of its own: NSRunLoop rounds waits down to milliseconds and spins
    // through the rest. The ports' timers end the waits.
    AutoreleasePool pool;
    NSDate* limit = mayWait ? [NSDate distantFuture] : [NSDate distantPast];
    return [_loop runMode:text(mode) beforeDate:limit];
}

void RunLoopHost::report(CFStringRef mode) {
    AutoreleasePool pool;
    _runLoop.hostIsReady(mode);
}

bool RunLoopHost::hasInputBeside(std::span<const int> descriptors, CFStringRef mode) {
    // GNUstep keeps a timer of its own in the main loop's default mode, for ever.
    if (_isMain && mode == defaultMode())
        return isApplication();
    // NSRunLoop tells only whether it has any input, so ours steps aside for the question.
    AutoreleasePool pool;
    for (int descriptor : descriptors)
        [_loop removeEvent:handle(descriptor) type:ET_RDESC forMode:text(mode) all:YES];
    bool hasInput = [_loop limitDateForMode:text(mode)] != nil;
    for (int descriptor : descriptors)
        watch(descriptor, mode);
    return hasInput;
}

}  // namespace

std::unique_ptr<HostLoop> makeRunLoopHost(RunLoop& loop) {
    return std::make_unique<RunLoopHost>(loop);
}

}  // namespace cf
