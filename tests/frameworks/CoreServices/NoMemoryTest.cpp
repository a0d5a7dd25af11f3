// SPDX-License-Identifier: MIT
// Calls of C whose memory runs out at one place after the other: they tell, and throw nothing.
#include "tests/support/TemporaryFolder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/CoreServices.h>
#include <DiskArbitration/DiskArbitration.h>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <new>
#include <sys/event.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

thread_local long allocationsLeft = -1;  // negative for no limit

}  // namespace

void* operator new(std::size_t size) {
    if (allocationsLeft == 0)
        throw std::bad_alloc();
    if (allocationsLeft > 0)
        --allocationsLeft;
    if (void* memory = std::malloc(size != 0 ? size : 1))
        return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using tav::test::TemporaryFolder;

constexpr long kMost = 10'000;

// Whether the call does its work in the end, having failed before without an exception.
bool failsUntilThereIsEnough(const std::function<bool()>& call) {
    // What is kept for ever is made now.
    EXPECT_TRUE(call());
    for (long count = 0; count < kMost; ++count) {
        allocationsLeft = count;
        const bool isDone = call();
        allocationsLeft = -1;
        if (isDone)
            return count > 0;
    }
    return false;
}

class NoMemory : public testing::Test {
protected:
    NoMemory() {
        tav::test::writeFile(folder / "a file with a name that is long", "");
        const std::string path = folder / "a file with a name that is long";
        EXPECT_EQ(FSPathMakeRef(reinterpret_cast<const UInt8*>(path.c_str()), &item, nullptr),
                  noErr);
    }

    TemporaryFolder folder;
    FSRef item{};
};

TEST_F(NoMemory, OfAliasesIsTold) {
    EXPECT_TRUE(failsUntilThereIsEnough([&] {
        AliasHandle alias = nullptr;
        const OSErr error = FSNewAliasMinimal(&item, &alias);
        EXPECT_TRUE(error == noErr || error == memFullErr) << error;
        EXPECT_EQ(alias != nullptr, error == noErr);
        if (alias != nullptr)
            DisposeHandle(reinterpret_cast<Handle>(alias));
        return error == noErr;
    }));
    EXPECT_TRUE(failsUntilThereIsEnough([&] {
        Boolean isFolder = false;
        Boolean wasAliased = false;
        FSRef reference = item;
        return FSResolveAliasFile(&reference, true, &isFolder, &wasAliased) == noErr;
    }));
}

TEST_F(NoMemory, OfAttributesIsTold) {
    const void* name = kLSItemIsInvisible;
    CFArrayRef names = CFArrayCreate(kCFAllocatorDefault, &name, 1, &kCFTypeArrayCallBacks);
    EXPECT_TRUE(failsUntilThereIsEnough([&] {
        CFDictionaryRef values = nullptr;
        const OSStatus error = LSCopyItemAttributes(&item, kLSRolesViewer, names, &values);
        if (values != nullptr)
            CFRelease(values);
        return error == noErr;
    }));
    CFRelease(names);
}

TEST_F(NoMemory, OfDisksIsTold) {
    DASessionRef session = DASessionCreate(kCFAllocatorDefault);
    EXPECT_TRUE(failsUntilThereIsEnough([&] {
        DADiskRef disk = DADiskCreateFromBSDName(kCFAllocatorDefault, session, "/dev/none at all");
        if (disk != nullptr)
            CFRelease(disk);
        return disk != nullptr;
    }));
    CFRelease(session);
}

TEST_F(NoMemory, OfTheSystemsCallsIsTold) {
    EXPECT_TRUE(failsUntilThereIsEnough([] {
        struct statfs facts {};
        errno = 0;
        const int result = statfs("/usr/share/some folder that is long/..", &facts);
        EXPECT_TRUE(result == 0 || errno != 0);
        return result == 0 || errno == ENOENT;
    }));
    EXPECT_TRUE(failsUntilThereIsEnough([] {
        const int queue = kqueue();
        EXPECT_TRUE(queue >= 0 || errno == ENOMEM);
        close(queue);
        return queue >= 0;
    }));
}

}  // namespace
