// SPDX-License-Identifier: MIT
// Copies that are whole or not there. Mounts: needs root.
#import <Foundation/Foundation.h>

#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <thread>
#include <unistd.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;

class Copy : public testing::Test {
protected:
    Copy() : _pool([[NSAutoreleasePool alloc] init]) {
        fs::create_directories(folder / "App.app/Contents");
        writeFile(folder / "App.app/Contents/program", "program");
        chmod((folder / "App.app/Contents/program").c_str(), 0751);
        fs::create_symlink("program", folder / "App.app/Contents/link");
    }
    ~Copy() override { [_pool release]; }

    static NSString* text(const std::string& bytes) {
        return [NSString stringWithUTF8String:bytes.c_str()];
    }
    /// 0 when done, else the error's code.
    NSInteger copy(const std::string& to) {
        NSError* error = nil;
        if ([[NSFileManager defaultManager] copyItemAtPath:text(folder / "App.app")
                                                    toPath:text(to)
                                                     error:&error])
            return 0;
        EXPECT_TRUE([[error domain] isEqualToString:NSCocoaErrorDomain]);
        return [error code];
    }

    /// A file comes to the place of the copy as soon as that has begun, under another name.
    NSInteger copyWhileAnotherComes(const std::string& late) {
        const int events = inotify_init1(IN_CLOEXEC);
        inotify_add_watch(events, folder.path().c_str(), IN_CREATE);
        std::thread other([&] {
            char event[1024];
            EXPECT_GT(read(events, event, sizeof event), 0);
            const int file = open(late.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
            if (file < 0)
                return;
            EXPECT_EQ(write(file, "other", 5), 5);
            close(file);
        });
        const NSInteger result = copy(late);
        other.join();
        close(events);
        return result;
    }

    TemporaryFolder folder;

private:
    NSAutoreleasePool* _pool;
};

TEST_F(Copy, HasAllThatTheOriginalHas) {
    setxattr((folder / "App.app").c_str(), "user.note", "x", 1, 0);
    EXPECT_EQ(copy(folder / "Copy.app"), 0);
    EXPECT_EQ(readFile(folder / "Copy.app/Contents/program"), "program");
    EXPECT_EQ(fs::status(folder / "Copy.app/Contents/program").permissions(), fs::perms(0751));
    EXPECT_EQ(fs::read_symlink(folder / "Copy.app/Contents/link"), "program");
    EXPECT_EQ(getxattr((folder / "Copy.app").c_str(), "user.note", nullptr, 0), 1);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"App.app", "Copy.app"}));
}

TEST_F(Copy, TakesTheTimeAndTheOwnerAlong) {
    EXPECT_EQ(copy(folder / "Copy.app"), 0);
    for (const char* name : {"", "/Contents", "/Contents/program"}) {
        struct stat one {
        }, other{};
        ASSERT_EQ(lstat((folder / "App.app" + name).c_str(), &one), 0);
        ASSERT_EQ(lstat((folder / "Copy.app" + name).c_str(), &other), 0);
        EXPECT_EQ(one.st_mtim.tv_nsec, other.st_mtim.tv_nsec) << name;
        EXPECT_EQ(one.st_mode, other.st_mode) << name;
    }
}

TEST_F(Copy, NeverReplacesWhatIsThere) {
    writeFile(folder / "Copy.app", "other");
    EXPECT_EQ(copy(folder / "Copy.app"), NSFileWriteFileExistsError);
    EXPECT_EQ(readFile(folder / "Copy.app"), "other");
    fs::create_symlink("missing", folder / "Link.app");
    EXPECT_EQ(copy(folder / "Link.app"), NSFileWriteFileExistsError);
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"App.app", "Copy.app", "Link.app"}));
}

TEST_F(Copy, DoesNotReplaceWhatAppearsMeanwhile) {
    writeFile(folder / "App.app/large", std::string(64 << 20, 'x'));
    const std::string late = folder / "Copy.app";
    NSInteger result = 0;
    // On a busy machine the copy may be there first.
    for (int attempt = 0; attempt < 10 && result == 0; ++attempt) {
        fs::remove_all(late);
        result = copyWhileAnotherComes(late);
    }
    EXPECT_EQ(result, NSFileWriteFileExistsError);
    EXPECT_EQ(readFile(late), "other");
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"App.app", "Copy.app"}));
}

TEST_F(Copy, LeavesNothingWhereTheDiskIsFull) {
    const MountedMemory disk(folder / "disk");
    writeFile(folder / "App.app/large", std::string(3 << 20, 'x'));
    EXPECT_EQ(copy(folder / "disk/Copy.app"), NSFileWriteOutOfSpaceError);
    EXPECT_TRUE(fs::is_empty(folder / "disk"));
}

TEST_F(Copy, SaysWhyItFailed) {
    EXPECT_EQ(copy(folder / "missing/Copy.app"), NSFileNoSuchFileError);
    NSError* error = nil;
    EXPECT_FALSE([[NSFileManager defaultManager] copyItemAtPath:text(folder / "none.app")
                                                         toPath:text(folder / "Copy.app")
                                                          error:&error]);
    EXPECT_EQ([error code], NSFileNoSuchFileError);
    EXPECT_STREQ([[error localizedDescription] UTF8String],
                 "\"none.app\" could not be copied: No such file or directory");
    EXPECT_FALSE([[NSFileManager defaultManager] copyItemAtPath:text(folder / "none.app")
                                                         toPath:text(folder / "Copy.app")
                                                          error:nullptr]);
}

}  // namespace
