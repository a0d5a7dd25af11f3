// SPDX-License-Identifier: MIT
#import <Foundation/NSFileManager+Trash.h>

#include "../AppKit/Sandbox.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace trashtest;

class FileManagerTrash : public testing::Test {
protected:
    void SetUp() override {
        setenv("XDG_DATA_HOME", (sandbox / "data").c_str(), 1);
        pool = [[NSAutoreleasePool alloc] init];
        files = [NSFileManager defaultManager];
    }
    void TearDown() override { [pool release]; }

    static NSURL* urlOf(const std::string& path) {
        return [NSURL fileURLWithPath:[NSString stringWithUTF8String:path.c_str()]];
    }

    NSURL* trash(const std::string& path) {
        NSURL* trashed = nil;
        EXPECT_TRUE([files trashItemAtURL:urlOf(path) resultingItemURL:&trashed error:nullptr]);
        return trashed;
    }

    // The error of an item that must not go.
    NSError* refusal(const std::string& path) {
        NSError* error = nil;
        NSURL* trashed = nil;
        EXPECT_FALSE([files trashItemAtURL:urlOf(path) resultingItemURL:&trashed error:&error]);
        EXPECT_EQ(trashed, nil);
        EXPECT_TRUE([[error domain] isEqualToString:NSCocoaErrorDomain]);
        return error;
    }

    static int systemErrorOf(NSError* error) {
        NSError* below = [[error userInfo] objectForKey:NSUnderlyingErrorKey];
        EXPECT_TRUE(below == nil || [[below domain] isEqualToString:NSPOSIXErrorDomain]);
        return static_cast<int>([below code]);
    }

    static std::string textOf(NSError* error) { return [[error localizedDescription] UTF8String]; }

    Sandbox sandbox;
    NSAutoreleasePool* pool = nil;
    NSFileManager* files = nil;
};

TEST_F(FileManagerTrash, GivesWhereTheItemIsNow) {
    NSURL* trashed = trash(sandbox.makeFile("one.txt", "kept"));
    EXPECT_EQ([[trashed path] UTF8String], sandbox / "data/Trash/files/one.txt");
    EXPECT_EQ(contentOf([[trashed path] UTF8String]), "kept");
}

TEST_F(FileManagerTrash, NeedsNeitherPlaceNorErrorToBeAsked) {
    EXPECT_TRUE([files trashItemAtURL:urlOf(sandbox.makeFile("one"))
                     resultingItemURL:nullptr
                                error:nullptr]);
    EXPECT_FALSE([files trashItemAtURL:urlOf(sandbox / "none")
                      resultingItemURL:nullptr
                                 error:nullptr]);
}

TEST_F(FileManagerTrash, MissingItemIsNoSuchFile) {
    NSError* error = refusal(sandbox / "none");
    EXPECT_EQ([error code], NSFileNoSuchFileError);
    EXPECT_EQ(systemErrorOf(error), ENOENT);
    EXPECT_EQ(textOf(error), "there is no such item (No such file or directory)");
}

TEST_F(FileManagerTrash, ItemOfTheTrashIsAFeatureUnsupported) {
    NSURL* trashed = trash(sandbox.makeFile("one"));
    NSError* error = refusal([[trashed path] UTF8String]);
    EXPECT_EQ([error code], NSFeatureUnsupportedError);
    EXPECT_EQ(systemErrorOf(error), 0);
    EXPECT_EQ(textOf(error), "it belongs to the trash");
}

TEST_F(FileManagerTrash, ItemOnAReadOnlyDiskIsOnAReadOnlyVolume) {
    MountedImage disk(sandbox);
    writeFile(disk / "one", "kept");
    std::filesystem::create_directories(disk / (".Trash-" + std::to_string(getuid()) + "/files"));
    std::filesystem::create_directories(disk / (".Trash-" + std::to_string(getuid()) + "/info"));
    ASSERT_EQ(mount(nullptr, disk.path().c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr), 0);
    NSError* error = refusal(disk / "one");
    EXPECT_EQ(systemErrorOf(error), EROFS);
    EXPECT_EQ([error code], NSFileWriteVolumeReadOnlyError);
    EXPECT_EQ(contentOf(disk / "one"), "kept");
}

TEST_F(FileManagerTrash, ItemOfAFolderThatMayNotBeChangedIsNotPermitted) {
    constexpr uid_t kNobody = 65534;
    std::filesystem::permissions(sandbox.path(), static_cast<std::filesystem::perms>(0755));
    std::string path = sandbox.makeFile("locked/file");
    std::filesystem::create_directory(sandbox / "data");
    ASSERT_EQ(chown((sandbox / "data").c_str(), kNobody, kNobody), 0);
    pid_t child = fork();
    if (child == 0) {
        bool changed = setgid(kNobody) == 0 && setuid(kNobody) == 0;
        NSError* error = refusal(path);
        bool right = [error code] == NSFileWriteNoPermissionError && systemErrorOf(error) == EACCES;
        _exit(changed && right ? 0 : 1);
    }
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(exists(path));
}

TEST_F(FileManagerTrash, RestoredItemIsWhereItWas) {
    std::string path = sandbox.makeFile("folder/one", "kept");
    NSURL* trashed = trash(path);
    std::filesystem::remove(sandbox / "folder");
    EXPECT_TRUE([files restoreTrashedItemAtURL:trashed
                                      identity:[files identityOfItemAtURL:trashed]
                                         toURL:urlOf(path)
                                         error:nullptr]);
    EXPECT_EQ(contentOf(path), "kept");
    EXPECT_TRUE(namesIn(sandbox / "data/Trash/info").empty());
}

TEST_F(FileManagerTrash, WhatHasTakenTheItemsPlaceIsAFileThatExists) {
    std::string path = sandbox.makeFile("one", "old");
    NSURL* trashed = trash(path);
    writeFile(path, "new");
    NSError* error = nil;
    EXPECT_FALSE([files restoreTrashedItemAtURL:trashed
                                       identity:[files identityOfItemAtURL:trashed]
                                          toURL:urlOf(path)
                                          error:&error]);
    EXPECT_EQ([error code], NSFileWriteFileExistsError);
    EXPECT_EQ(contentOf(path), "new");
    EXPECT_EQ(contentOf([[trashed path] UTF8String]), "old");
}

TEST_F(FileManagerTrash, ItemOfAnotherIdentityIsNotRestored) {
    std::string path = sandbox.makeFile("one");
    NSURL* trashed = trash(path);
    for (NSString* identity in
         @[ @"", @"1-1", [files identityOfItemAtURL:urlOf(sandbox.path())] ]) {
        NSError* error = nil;
        EXPECT_FALSE([files restoreTrashedItemAtURL:trashed
                                           identity:identity
                                              toURL:urlOf(path)
                                              error:&error]);
        EXPECT_EQ([error code], NSFileNoSuchFileError);
        EXPECT_EQ(textOf(error), "another item has its name in the trash");
    }
    EXPECT_FALSE([files restoreTrashedItemAtURL:trashed
                                       identity:nil
                                          toURL:urlOf(path)
                                          error:nullptr]);
    EXPECT_FALSE(exists(path));
}

TEST_F(FileManagerTrash, IdentityStaysWithTheItemAndIsNilForNone) {
    std::string path = sandbox.makeFile("one");
    NSString* before = [files identityOfItemAtURL:urlOf(path)];
    EXPECT_FALSE(
        [before isEqualToString:[files identityOfItemAtURL:urlOf(sandbox.makeFile("two"))]]);
    NSURL* trashed = trash(path);
    EXPECT_TRUE([before isEqualToString:[files identityOfItemAtURL:trashed]]);
    EXPECT_EQ([files identityOfItemAtURL:urlOf(path)], nil);
}

}  // namespace
