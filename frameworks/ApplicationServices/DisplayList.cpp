// SPDX-License-Identifier: MIT
#include "DisplayList.h"

#include <algorithm>
#include <pthread.h>
#include <sys/epoll.h>

namespace displays {

namespace {

// A server that is not there is looked for no more often: a name may stand for a slow network.
constexpr std::chrono::seconds kBetweenAttempts{1};

}  // namespace

DisplayList& DisplayList::ofProcess() {
    // Never destroyed: other threads may look until the very end.
    static DisplayList* const list = [] {
        auto* made = new DisplayList(connectToServer);
        // The run loop's own handlers come first: its locks are taken after this one's.
        CFRunLoopGetMain();
        pthread_atfork([] { ofProcess().prepareFork(); }, [] { ofProcess().finishFork(false); },
                       [] { ofProcess().finishFork(true); });
        return made;
    }();
    return *list;
}

DisplayList::DisplayList(Connect connect) : _connect(std::move(connect)) {
    CFRunLoopSourceContext context{};
    context.info = this;
    context.perform = [](void* self) { static_cast<DisplayList*>(self)->deliver(); };
    _delivery = CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
}

DisplayList::~DisplayList() {
    CFRunLoopSourceInvalidate(_delivery);
    CFRelease(_delivery);
    _watch.reset();
}

void DisplayList::finishFork(bool isChild) {
    if (isChild && _server) {
        _watch.reset();
        _server->abandon();
        _server.reset();
        // The child begins anew: nothing has changed for it, it has a connection to make.
        _nextAttempt = {};
    }
    _mutex.unlock();
}

DisplayList::Snapshot DisplayList::current() {
    std::lock_guard lock(_mutex);
    update();
    return _displays;
}

void DisplayList::update() {
    if (!_server)
        connect();
    // Until there is none: what comes while the server answers is not seen at the descriptor.
    while (_server) {
        const Server::News news = _server->takeNews();
        if (news == Server::News::None)
            return;
        if (news == Server::News::Lost)
            disconnect();
        else
            replace(_server->read());
    }
}

void DisplayList::connect() {
    const auto now = std::chrono::steady_clock::now();
    if (now < _nextAttempt)
        return;
    _nextAttempt = now + kBetweenAttempts;
    _server = _connect();
    if (!_server)
        return;
    replace(_server->read());
    follow();
}

void DisplayList::disconnect() {
    _watch.reset();
    _server.reset();
    replace({});
}

void DisplayList::follow() {
    if (_listeners.empty()) {
        _watch.reset();
        return;
    }
    if (_watch || !_server)
        return;
    _watch = std::make_unique<cf::RunLoopDescriptor>(_server->descriptor(), EPOLLIN,
                                                     [this](std::uint32_t) { current(); });
    _watch->schedule(CFRunLoopGetMain(), kCFRunLoopCommonModes);
}

void DisplayList::replace(Displays displays) {
    if (displays == *_displays)
        return;
    if (!_listeners.empty()) {
        const std::vector<Change> changes = changesBetween(*_displays, displays);
        _changes.insert(_changes.end(), changes.begin(), changes.end());
        if (!_changes.empty())
            signalDelivery();
    }
    _displays = std::make_shared<Displays>(std::move(displays));
}

void DisplayList::signalDelivery() {
    CFRunLoopSourceSignal(_delivery);
    CFRunLoopWakeUp(CFRunLoopGetMain());
}

void DisplayList::add(CGDisplayReconfigurationCallBack callback, void* userInfo) {
    std::lock_guard lock(_mutex);
    // What is there already is no news for the new one.
    update();
    if (_listeners.empty())
        CFRunLoopAddSource(CFRunLoopGetMain(), _delivery, kCFRunLoopCommonModes);
    _listeners.push_back({callback, userInfo, ++_lastNumber});
    follow();
}

bool DisplayList::remove(CGDisplayReconfigurationCallBack callback, void* userInfo) {
    std::lock_guard lock(_mutex);
    const auto found =
        std::find_if(_listeners.begin(), _listeners.end(), [&](const Listener& listener) {
            return listener.callback == callback && listener.userInfo == userInfo;
        });
    if (found == _listeners.end())
        return false;
    _listeners.erase(found);
    if (_listeners.empty()) {
        // A run loop that has nothing else ends.
        CFRunLoopRemoveSource(CFRunLoopGetMain(), _delivery, kCFRunLoopCommonModes);
        _changes.clear();
        follow();
    }
    return true;
}

// One at a time, so that what a callback throws does not keep the others from being told.
void DisplayList::deliver() {
    std::unique_lock lock(_mutex);
    if (_changes.empty())
        return;
    const Change change = _changes.front();
    _changes.pop_front();
    if (!_changes.empty())
        signalDelivery();
    lock.unlock();
    tell(change);
}

// The next in the order of registration. They may come and go while they are told.
bool DisplayList::nextListener(std::uint64_t after, Listener* listener) {
    std::lock_guard lock(_mutex);
    for (const Listener& candidate : _listeners)
        if (candidate.number > after) {
            *listener = candidate;
            return true;
        }
    return false;
}

void DisplayList::tell(const Change& change) {
    Listener listener{nullptr, nullptr, 0};
    while (nextListener(listener.number, &listener))
        listener.callback(change.id, change.flags, listener.userInfo);
}

}  // namespace displays
