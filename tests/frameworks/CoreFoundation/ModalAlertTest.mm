// SPDX-License-Identifier: MIT
// Run-loop items while an application sits in a modal alert. Needs an X server.
#import "examples/WakeApplication.h"

#include "Workers.h"

#include <gtest/gtest.h>

namespace {

class ModalAlert : public testing::Test {
protected:
    ModalAlert() : _pool([[NSAutoreleasePool alloc] init]) { [NSApplication sharedApplication]; }
    ~ModalAlert() override { [_pool release]; }

    // Returns when something has ended the alert. What it answers is that of its buttons alone.
    void runAlert() {
        NSAlert* alert = [[[NSAlert alloc] init] autorelease];
        [alert setMessageText:@"Work goes on"];
        [alert addButtonWithTitle:@"OK"];
        [alert runModal];
    }

    NSAutoreleasePool* _pool;
};

void endModal() {
    [NSApp stopModal];
    wakeApplication();
}

}  // namespace

TEST_F(ModalAlert, TheModesOfAppKitAreCommonModes) {
    TestSource source;
    source.add();
    for (NSString* mode in @[ NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ]) {
        EXPECT_TRUE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source.get(),
                                            reinterpret_cast<CFStringRef>(mode)));
    }
}

TEST_F(ModalAlert, WorkOfManyThreadsIsServed) {
    Workers workers(endModal);
    runAlert();
    EXPECT_TRUE(workers.allServed());
}

TEST_F(ModalAlert, ItIsEndedByASourceThatWasSignalledWithoutAWakeUp) {
    TestSource ending(endModal);
    TestSource opening([&] { ending.signal(); });
    ending.add();
    opening.add().signalAndWake();
    runAlert();
    EXPECT_EQ(ending.calls(), 1);
}

TEST_F(ModalAlert, ATimerFires) {
    TestTimer timer(0.01, 0.01, [&] {
        if (timer.calls() == 5)
            endModal();
    });
    timer.add();
    runAlert();
    EXPECT_EQ(timer.calls(), 5);
}

TEST_F(ModalAlert, WorkIsServedInAnAlertThatACallbackOpens) {
    bool served = false;
    TestSource opener([&] {
        Workers workers(endModal);
        runAlert();
        served = workers.allServed();
    });
    opener.add().signalAndWake();
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 60, true), kCFRunLoopRunHandledSource);
    EXPECT_TRUE(served);
}

TEST_F(ModalAlert, AnApplicationsLoopIsNeverFinished) {
    EXPECT_EQ(CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.01, false), kCFRunLoopRunTimedOut);
}
