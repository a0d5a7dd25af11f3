// SPDX-License-Identifier: MIT
#include "RunLoopItems.h"

#include <atomic>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

namespace {

CFStringRef ownMode() {
    return CFSTR("OwnMode");
}

/// Notes what a source's call-backs are told.
struct Journal {
    std::vector<std::string> lines;
    int references = 1;

    void note(const char* what, CFStringRef mode) {
        char name[64];
        CFStringGetCString(mode, name, sizeof name, kCFStringEncodingUTF8);
        lines.push_back(std::string(what) + " " + name);
    }
};

CFRunLoopSourceRef journalSource(Journal& journal) {
    CFRunLoopSourceContext context{};
    context.info = &journal;
    context.retain = [](const void* info) {
        ++static_cast<Journal*>(const_cast<void*>(info))->references;
        return info;
    };
    context.release = [](const void* info) {
        --static_cast<Journal*>(const_cast<void*>(info))->references;
    };
    context.schedule = [](void* info, CFRunLoopRef, CFStringRef mode) {
        static_cast<Journal*>(info)->note("schedule", mode);
    };
    context.cancel = [](void* info, CFRunLoopRef, CFStringRef mode) {
        static_cast<Journal*>(info)->note("cancel", mode);
    };
    context.perform = [](void* info) { static_cast<Journal*>(info)->lines.push_back("perform"); };
    return CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context);
}

using Lines = std::vector<std::string>;

}  // namespace

TEST(RunLoopSource, SeveralSignalsGiveOneCall) {
    TestSource source;
    source.add();
    for (int i = 0; i < 5; ++i)
        source.signal();
    onePass();
    onePass();
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASignalBeforeTheSourceIsAddedIsKept) {
    TestSource source;
    source.signal();
    source.add();
    onePass();
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASignalInItsOwnCallIsServedInTheNextPass) {
    TestSource source([&] {
        if (source.calls() == 1)
            source.signalAndWake();
    });
    source.add().signal();
    EXPECT_TRUE(runUntil([&] { return source.calls() == 2; }));
    onePass();
    EXPECT_EQ(source.calls(), 2);
}

TEST(RunLoopSource, SourcesAreCalledInAscendingOrder) {
    std::vector<int> called;
    TestSource third([&] { called.push_back(3); }, 7);
    TestSource first([&] { called.push_back(1); }, -2);
    TestSource second([&] { called.push_back(2); }, 0);
    third.add(kCFRunLoopDefaultMode).signal();
    second.add().signal();
    first.add().signal();
    onePass();
    EXPECT_EQ(called, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(CFRunLoopSourceGetOrder(third.get()), 7);
}

TEST(RunLoopSource, AnInvalidSourceIsNeverCalled) {
    TestSource source;
    source.add().signal();
    EXPECT_TRUE(CFRunLoopSourceIsValid(source.get()));
    CFRunLoopSourceInvalidate(source.get());
    EXPECT_FALSE(CFRunLoopSourceIsValid(source.get()));
    EXPECT_FALSE(
        CFRunLoopContainsSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopCommonModes));
    source.add().signal();
    EXPECT_EQ(onePass(), kCFRunLoopRunFinished);
    EXPECT_EQ(source.calls(), 0);
}

TEST(RunLoopSource, ASourceMayInvalidateItselfInItsCall) {
    TestSource source([&] { CFRunLoopSourceInvalidate(source.get()); });
    source.add().signal();
    onePass();
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASourceRemovedByAnotherInTheSamePassIsNotCalled) {
    TestSource removed;
    TestSource remover(
        [&] { CFRunLoopRemoveSource(CFRunLoopGetCurrent(), removed.get(), kCFRunLoopCommonModes); },
        -1);
    removed.add().signal();
    remover.add().signal();
    onePass();
    EXPECT_EQ(removed.calls(), 0);
}

TEST(RunLoopSource, ARemovedSourceKeepsItsSignalForTheNextTimeItIsAdded) {
    TestSource source;
    source.add().signal();
    CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopCommonModes);
    onePass();
    EXPECT_EQ(source.calls(), 0);
    source.add();
    onePass();
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASourceIsServedOnlyInItsMode) {
    TestSource source;
    source.add(ownMode()).signal();
    onePass();
    EXPECT_EQ(source.calls(), 0);
    onePass(ownMode());
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASourceOfTheCommonModesIsServedInEachOfThem) {
    TestSource source;
    source.add();
    for (CFStringRef mode : {kCFRunLoopDefaultMode, CFSTR("NSModalPanelRunLoopMode"),
                             CFSTR("NSEventTrackingRunLoopMode")}) {
        source.signalAndWake();
        EXPECT_EQ(CFRunLoopRunInMode(mode, 10, true), kCFRunLoopRunHandledSource);
    }
    EXPECT_EQ(source.calls(), 3);
    source.signal();
    EXPECT_EQ(onePass(ownMode()), kCFRunLoopRunFinished);
    EXPECT_EQ(source.calls(), 3);
}

TEST(RunLoopSource, AModeBecomesCommonForSourcesThatAreThereAlready) {
    CFStringRef mode = CFSTR("LaterCommonMode");
    TestSource source;
    source.add();
    CFRunLoopAddCommonMode(CFRunLoopGetCurrent(), mode);
    EXPECT_TRUE(CFRunLoopContainsSource(CFRunLoopGetCurrent(), source.get(), mode));
    source.signalAndWake();
    EXPECT_EQ(CFRunLoopRunInMode(mode, 10, true), kCFRunLoopRunHandledSource);
    EXPECT_EQ(source.calls(), 1);
}

TEST(RunLoopSource, ASourceRemovedFromOneCommonModeStaysInTheOthers) {
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    CFStringRef panel = CFSTR("NSModalPanelRunLoopMode");
    TestSource source;
    source.add();
    CFRunLoopRemoveSource(loop, source.get(), kCFRunLoopDefaultMode);
    EXPECT_FALSE(CFRunLoopContainsSource(loop, source.get(), kCFRunLoopDefaultMode));
    EXPECT_TRUE(CFRunLoopContainsSource(loop, source.get(), panel));
    source.signalAndWake();
    EXPECT_EQ(CFRunLoopRunInMode(panel, 10, true), kCFRunLoopRunHandledSource);
}

TEST(RunLoopSource, AddingTwiceIsAddingOnce) {
    TestSource source;
    source.add().add(kCFRunLoopDefaultMode).add().signal();
    onePass();
    EXPECT_EQ(source.calls(), 1);
    CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopCommonModes);
    EXPECT_FALSE(
        CFRunLoopContainsSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopDefaultMode));
}

TEST(RunLoopSource, ScheduleAndCancelAreToldEverySingleMode) {
    Journal journal;
    CFRunLoopSourceRef source = journalSource(journal);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
    EXPECT_EQ(journal.lines, Lines{"schedule NSDefaultRunLoopMode"});
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, ownMode());
    CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source, ownMode());
    CFRunLoopSourceInvalidate(source);
    EXPECT_EQ(journal.lines, (Lines{"schedule NSDefaultRunLoopMode", "schedule OwnMode",
                                    "cancel OwnMode", "cancel NSDefaultRunLoopMode"}));
    CFRelease(source);
}

TEST(RunLoopSource, TheInfoIsReleasedWithTheSource) {
    Journal journal;
    CFRunLoopSourceRef source = journalSource(journal);
    EXPECT_EQ(journal.references, 2);
    CFRunLoopSourceInvalidate(source);
    EXPECT_EQ(journal.references, 2);
    CFRelease(source);
    EXPECT_EQ(journal.references, 1);
}

TEST(RunLoopSource, TheLoopKeepsASourceThatItsMakerHasReleased) {
    Journal journal;
    CFRunLoopSourceRef source = journalSource(journal);
    CFRunLoopAddSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
    EXPECT_EQ(CFGetRetainCount(source), 2);
    CFRelease(source);
    CFRunLoopSourceSignal(source);
    onePass();
    EXPECT_EQ(journal.lines.back(), "perform");
    CFRunLoopRemoveSource(CFRunLoopGetCurrent(), source, kCFRunLoopDefaultMode);
    EXPECT_EQ(journal.references, 1);
}

TEST(RunLoopSource, OneSourceMayServeTwoLoops) {
    TestSource source;
    source.add();
    CFRunLoopRef here = CFRunLoopGetCurrent();
    std::thread([&] {
        source.add();
        EXPECT_TRUE(
            CFRunLoopContainsSource(CFRunLoopGetCurrent(), source.get(), kCFRunLoopDefaultMode));
        source.signal();
        onePass();
    }).join();
    EXPECT_EQ(source.calls(), 1);
    EXPECT_TRUE(CFRunLoopContainsSource(here, source.get(), kCFRunLoopDefaultMode));
}

TEST(RunLoopSource, ASourceAddedByAnotherThreadIsServed) {
    TestSource keeper;
    keeper.add();
    TestSource source;
    CFRunLoopRef loop = CFRunLoopGetCurrent();
    std::thread other([&] {
        while (!CFRunLoopIsWaiting(loop))
            std::this_thread::yield();
        source.addTo(loop, kCFRunLoopDefaultMode).signalAndWake();
    });
    EXPECT_TRUE(runUntil([&] { return source.calls() == 1; }));
    other.join();
}

TEST(RunLoopSource, OnlyVersionZeroIsMade) {
    CFRunLoopSourceContext context{};
    context.version = 1;
    EXPECT_EQ(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, &context), nullptr);
    EXPECT_EQ(CFRunLoopSourceCreate(kCFAllocatorDefault, 0, nullptr), nullptr);
}

TEST(RunLoopSource, EveryJobOfManyThreadsIsServed) {
    constexpr int threadCount = 8;
    constexpr int rounds = 5000;
    std::atomic<int> posted{0};
    int seen = 0;
    TestSource source([&] { seen = posted.load(); });
    source.add();
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                ++posted;
                source.signalAndWake();
            }
        });
    }
    EXPECT_TRUE(runUntil([&] { return seen == threadCount * rounds; }));
    for (auto& thread : threads)
        thread.join();
    EXPECT_LE(source.calls(), threadCount * rounds);
}

TEST(RunLoopSource, NoWakeUpIsLostBetweenTwoThreads) {
    std::atomic<int> asked{0};
    std::atomic<int> answered{0};
    std::atomic<bool> isOver{false};
    TestSource source([&] { answered = asked.load(); });
    source.add();
    std::thread other([&] {
        for (int i = 1; i <= 20000 && !isOver; ++i) {
            asked = i;
            source.signalAndWake();
            while (answered.load() < i && !isOver)
                std::this_thread::yield();
        }
    });
    EXPECT_TRUE(runUntil([&] { return answered == 20000; }));
    isOver = true;
    other.join();
}
