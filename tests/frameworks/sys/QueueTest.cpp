// SPDX-License-Identifier: MIT
// The rules of the queue itself: what is pending, errors, descriptors that come and go, threads.
#include "KernelQueue.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/LoweredLimit.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <thread>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

class KernelQueues : public testing::Test {
protected:
    KernelQueues() {
        for (const char* name : {"a", "b", "c"})
            writeFile(folder / name, "text");
    }
    /// A change that every queue tells as NOTE_ATTRIB.
    void touch(const char* name) const { EXPECT_EQ(chmod((folder / name).c_str(), 0600), 0); }
    uintptr_t nextIdentifier() const {
        const timespec now{0, 0};
        return queue.next(now).ident;
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    KernelQueue queue;
};

TEST_F(KernelQueues, EventsOfOneDescriptorAreMerged) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    for (int round = 0; round < 3; ++round)
        writeFile(folder / "a", "longer than before");
    touch("a");
    EXPECT_EQ(queue.notes(), NOTE_WRITE | NOTE_EXTEND | NOTE_ATTRIB);
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, EventsComeInTheOrderOfTheFirstChange) {
    OpenItem a(folder / "a"), b(folder / "b"), c(folder / "c");
    for (const int item : {int(a), int(b), int(c)})
        ASSERT_EQ(queue.add(item), 0);
    touch("c");
    touch("a");
    touch("b");
    touch("c");
    EXPECT_EQ(nextIdentifier(), uintptr_t(c));
    EXPECT_EQ(nextIdentifier(), uintptr_t(a));
    EXPECT_EQ(nextIdentifier(), uintptr_t(b));
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, EventIsReturnedAsItWasAskedFor) {
    OpenItem item(folder / "a");
    int user = 0;
    struct kevent wanted {};
    EV_SET(&wanted, uintptr_t(item), EVFILT_VNODE, EV_ADD | EV_CLEAR, kAllNotes, 7, &user);
    ASSERT_EQ(kevent(queue.descriptor, &wanted, 1, nullptr, 0, nullptr), 0);
    touch("a");
    const struct kevent event = queue.next({0, 0});
    EXPECT_EQ(event.ident, uintptr_t(item));
    EXPECT_EQ(event.filter, -4);
    EXPECT_EQ(event.flags, 0x21);
    EXPECT_EQ(event.fflags, 8u);
    EXPECT_EQ(event.udata, &user);
}

TEST_F(KernelQueues, WithoutClearingAnEventStays) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item, kAllNotes, EV_ADD), 0);
    touch("a");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    struct kevent events[4];
    const timespec now{0, 0};
    EXPECT_EQ(kevent(queue.descriptor, nullptr, 0, events, 4, &now), 1);
}

TEST_F(KernelQueues, EventsBeyondTheRoomWaitForTheNextCall) {
    OpenItem a(folder / "a"), b(folder / "b"), c(folder / "c");
    for (const int item : {int(a), int(b), int(c)})
        ASSERT_EQ(queue.add(item), 0);
    for (const char* name : {"a", "b", "c"})
        touch(name);
    struct kevent events[2];
    EXPECT_EQ(kevent(queue.descriptor, nullptr, 0, events, 2, nullptr), 2);
    EXPECT_EQ(kevent(queue.descriptor, nullptr, 0, events, 2, nullptr), 1);
    EXPECT_EQ(events[0].ident, uintptr_t(c));
}

TEST_F(KernelQueues, TwoDescriptorsOfOneFileAreBothTold) {
    OpenItem first(folder / "a"), second(folder / "a");
    ASSERT_EQ(queue.add(first), 0);
    ASSERT_EQ(queue.add(second), 0);
    touch("a");
    EXPECT_EQ(nextIdentifier(), uintptr_t(first));
    EXPECT_EQ(nextIdentifier(), uintptr_t(second));
    ASSERT_EQ(queue.remove(first), 0);
    first.close();
    touch("a");
    EXPECT_EQ(nextIdentifier(), uintptr_t(second));
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, RemovedDescriptorIsSilentAndMayBeAddedAgain) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    touch("a");
    ASSERT_EQ(queue.remove(item), 0);
    EXPECT_EQ(queue.notes(), 0u);
    touch("a");
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(queue.notes(), 0u);
    touch("a");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelQueues, DescriptorAddedAgainFollowsItsFileToAnotherName) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    ASSERT_EQ(queue.remove(item), 0);
    fs::rename(folder / "a", folder / "d");
    writeFile(folder / "a", "another file");
    ASSERT_EQ(queue.add(item), 0);
    touch("a");
    EXPECT_EQ(queue.notes(), 0u);
    touch("d");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelQueues, FileThatWentWhileItWasRemovedIsNotToldOf) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    ASSERT_EQ(queue.remove(item), 0);
    fs::remove(folder / "a");
    EXPECT_EQ(queue.add(item), 0);
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, ClosedDescriptorIsNotToldOf) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    touch("a");
    item.close();
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, NumberOfAClosedDescriptorBelongsToTheNextOne) {
    const int number = open((folder / "a").c_str(), O_EVTONLY);
    ASSERT_EQ(queue.add(number), 0);
    close(number);
    OpenItem other(folder / "b");
    ASSERT_EQ(other, number);
    ASSERT_EQ(queue.add(other), 0);
    touch("a");
    EXPECT_EQ(queue.notes(), 0u);
    touch("b");
    EXPECT_EQ(nextIdentifier(), uintptr_t(number));
}

TEST_F(KernelQueues, ErrorsAreThePlatforms) {
    OpenItem item(folder / "a");
    EXPECT_EQ(queue.remove(item), ENOENT);
    EXPECT_EQ(queue.add(-1), EBADF);
    struct kevent wanted {};
    EV_SET(&wanted, uintptr_t(item), -1, EV_ADD, 0, 0, nullptr);
    EXPECT_EQ(kevent(queue.descriptor, &wanted, 1, nullptr, 0, nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(kevent(item, nullptr, 0, nullptr, 0, nullptr), -1);
    EXPECT_EQ(errno, EBADF);
    EXPECT_EQ(kevent(queue.descriptor, nullptr, 1, nullptr, 0, nullptr), -1);
    EXPECT_EQ(errno, EFAULT);
    EXPECT_EQ(kevent(queue.descriptor, nullptr, -1, nullptr, 0, nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(KernelQueues, FailedChangeIsReportedWhereThereIsRoom) {
    OpenItem item(folder / "a");
    struct kevent changes[2];
    EV_SET(&changes[0], 1000, EVFILT_VNODE, EV_ADD, kAllNotes, 0, nullptr);
    EV_SET(&changes[1], uintptr_t(item), EVFILT_VNODE, EV_ADD | EV_CLEAR, kAllNotes, 0, nullptr);
    struct kevent events[4];
    ASSERT_EQ(kevent(queue.descriptor, changes, 2, events, 4, nullptr), 1);
    EXPECT_EQ(events[0].ident, 1000u);
    EXPECT_EQ(events[0].flags, EV_ERROR);
    EXPECT_EQ(events[0].data, EBADF);
    touch("a");
    EXPECT_EQ(nextIdentifier(), uintptr_t(item));
}

TEST_F(KernelQueues, WaitEndsWithTheEventOfAnotherThread) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    std::thread other([this] { touch("a"); });
    EXPECT_EQ(queue.awaited(), static_cast<unsigned>(NOTE_ATTRIB));
    other.join();
}

TEST_F(KernelQueues, WaitEndsWhenAnotherThreadHasReadTheEvent) {
    OpenItem a(folder / "a"), b(folder / "b");
    ASSERT_EQ(queue.add(a), 0);
    std::thread other([&] {
        touch("a");
        // Reads what is there before it changes anything.
        EXPECT_EQ(queue.add(b), 0);
    });
    EXPECT_EQ(queue.awaited(), static_cast<unsigned>(NOTE_ATTRIB));
    other.join();
}

TEST_F(KernelQueues, QueueIsReadableWhenThereIsAnEvent) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    pollfd wait{queue.descriptor, POLLIN, 0};
    EXPECT_EQ(poll(&wait, 1, 0), 0);
    touch("a");
    EXPECT_EQ(poll(&wait, 1, 30'000), 1);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    EXPECT_EQ(poll(&wait, 1, 0), 0);
}

TEST_F(KernelQueues, WaitEndsWithTheTimeout) {
    const timespec timeout{0, 20'000'000};
    EXPECT_EQ(queue.next(timeout).ident, 0u);
}

TEST_F(KernelQueues, WaitEndsWhenItsQueueIsClosed) {
    // Of a folder that a descriptor holds is asked now and then, so that the wait looks about.
    const int held = open(folder.path().c_str(), O_RDONLY | O_CLOEXEC);
    const int closed = kqueue();
    struct kevent wanted {};
    EV_SET(&wanted, uintptr_t(held), EVFILT_VNODE, EV_ADD | EV_CLEAR, kAllNotes, 0, nullptr);
    ASSERT_EQ(kevent(closed, &wanted, 1, nullptr, 0, nullptr), 0);
    std::thread other([&] { close(closed); });
    struct kevent event {};
    const timespec timeout{20, 0};
    EXPECT_EQ(kevent(closed, nullptr, 0, &event, 1, &timeout), -1);
    EXPECT_EQ(errno, EBADF);
    other.join();
    close(held);
}

TEST_F(KernelQueues, NumberOfAClosedQueueBelongsToTheNextOne) {
    OpenItem item(folder / "a");
    const int first = kqueue();
    struct kevent wanted {};
    EV_SET(&wanted, uintptr_t(item), EVFILT_VNODE, EV_ADD | EV_CLEAR, kAllNotes, 0, nullptr);
    ASSERT_EQ(kevent(first, &wanted, 1, nullptr, 0, nullptr), 0);
    close(first);
    const int file = open((folder / "b").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(file, first);
    EXPECT_EQ(kevent(first, &wanted, 1, nullptr, 0, nullptr), -1);
    EXPECT_EQ(errno, EBADF);
    close(file);
    ASSERT_EQ(kqueue(), first);
    touch("a");
    struct kevent event {};
    const timespec now{0, 0};
    EXPECT_EQ(kevent(first, nullptr, 0, &event, 1, &now), 0);
    close(first);
}

/// For a while the process may open nothing.
class NoDescriptors {
public:
    NoDescriptors() {
        EXPECT_EQ(getrlimit(RLIMIT_NOFILE, &_before), 0);
        const rlimit none{0, _before.rlim_max};
        EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
    }
    ~NoDescriptors() { EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &_before), 0); }
    NoDescriptors(const NoDescriptors&) = delete;
    NoDescriptors& operator=(const NoDescriptors&) = delete;

private:
    rlimit _before{};
};

TEST_F(KernelQueues, QueueBeyondTheLimitOfDescriptorsIsRefused) {
    const NoDescriptors limit;
    EXPECT_EQ(kqueue(), -1);
    EXPECT_EQ(errno, EMFILE);
}

TEST_F(KernelQueues, ItemThatCannotBeLetGoIsRefusedAndMayBeAddedLater) {
    OpenItem item(folder / "a");
    // The sanitizer that checks types needs descriptors when it sees one for the first time.
    OpenItem other(folder / "b");
    ASSERT_EQ(queue.add(other), 0);
    {
        const NoDescriptors limit;
        EXPECT_EQ(queue.add(item), EMFILE);
    }
    touch("a");
    EXPECT_EQ(queue.notes(), 0u);
    ASSERT_EQ(queue.add(item), 0);
    touch("a");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelQueues, ForkedChildHasNoQueueOfItsParents) {
    OpenItem item(folder / "a");
    ASSERT_EQ(queue.add(item), 0);
    touch("a");
    EXPECT_EQ(runInChild([&]() -> std::string {
                  const timespec now{0, 0};
                  struct kevent event {};
                  const int result = kevent(queue.descriptor, nullptr, 0, &event, 1, &now);
                  return result == -1 && errno == EBADF ? "EBADF" : "the parent's event was read";
              }),
              "EBADF");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelQueues, ForkedChildMakesQueuesOfItsOwn) {
    EXPECT_EQ(runInChild([&]() -> std::string {
                  const KernelQueue own;
                  OpenItem item(folder / "a");
                  if (own.add(item) != 0)
                      return "not added";
                  touch("a");
                  return own.notes() == NOTE_ATTRIB ? "told" : "not told";
              }),
              "told");
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelQueues, OverflowIsAChangeOfEverythingAndADeletionIsStillSeen) {
    const LoweredLimit limit("/proc/sys/fs/inotify/max_queued_events", "100");
    const KernelQueue small;
    const std::string busy = folder / "busy";
    fs::create_directory(busy);
    OpenItem item(busy), a(folder / "a"), b(folder / "b");
    for (const int each : {int(item), int(a), int(b)})
        ASSERT_EQ(small.add(each), 0);
    // Twice what the queue holds; names differ, so that none are merged.
    for (int i = 0; i < 100; ++i) {
        const std::string name = busy + "/" + std::to_string(i);
        ASSERT_EQ(mknod(name.c_str(), S_IFREG | 0600, 0), 0);
        ASSERT_EQ(unlink(name.c_str()), 0);
    }
    fs::remove(folder / "a");
    std::map<uintptr_t, std::uint32_t> told;
    for (auto event = small.next({0, 0}); event.ident != 0; event = small.next({0, 0}))
        told[event.ident] |= event.fflags;
    EXPECT_EQ(told[uintptr_t(item)] & NOTE_WRITE, static_cast<unsigned>(NOTE_WRITE));
    EXPECT_EQ(told[uintptr_t(a)] & NOTE_DELETE, static_cast<unsigned>(NOTE_DELETE));
    EXPECT_EQ(told[uintptr_t(b)] & (NOTE_WRITE | NOTE_DELETE), static_cast<unsigned>(NOTE_WRITE));
}

}  // namespace

}  // namespace tav::test
