// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

class FileManagerBirthTime : public testing::Test {
protected:
    void SetUp() override {
        pool = [[NSAutoreleasePool alloc] init];
        files = [NSFileManager defaultManager];
        char pattern[] = "/tmp/birth-time-XXXXXX";
        folder = mkdtemp(pattern);
        std::ofstream(folder / "file") << "content";
        const timespec times[] = {{1'000'000'000, 0}, {1'000'000'000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, (folder / "file").c_str(), times, 0), 0);
        std::filesystem::create_symlink("file", folder / "link");
        path = pathOf("file");
    }
    void TearDown() override {
        std::filesystem::remove_all(folder);
        [pool release];
    }

    NSString* pathOf(const char* name) {
        return [NSString stringWithUTF8String:(folder / name).c_str()];
    }

    NSDictionary* attributes(BOOL traverse = YES) {
        return [files fileAttributesAtPath:path traverseLink:traverse];
    }

    // In seconds since 1970, as the file system has it.
    double birthTime(const char* name, int flags = 0) {
        struct statx info {};
        EXPECT_EQ(statx(AT_FDCWD, (folder / name).c_str(), flags, STATX_BTIME, &info), 0);
        EXPECT_TRUE(info.stx_mask & STATX_BTIME) << "/tmp keeps no birth times";
        return static_cast<double>(info.stx_btime.tv_sec) + info.stx_btime.tv_nsec / 1e9;
    }

    std::filesystem::path folder;
    NSAutoreleasePool* pool = nil;
    NSFileManager* files = nil;
    NSString* path = nil;
};

constexpr double kMicrosecond = 1e-6;

TEST_F(FileManagerBirthTime, CreationDateIsTheBirthTime) {
    NSDate* const date = [attributes() objectForKey:NSFileCreationDate];
    EXPECT_NEAR([date timeIntervalSince1970], birthTime("file"), 2 * kMicrosecond);
    EXPECT_LE([date timeIntervalSince1970], birthTime("file"));
    EXPECT_TRUE([date isEqual:[attributes() fileCreationDate]]);
}

TEST_F(FileManagerBirthTime, EverythingElseIsAsItWas) {
    NSDictionary* const all = attributes();
    EXPECT_EQ([[all fileModificationDate] timeIntervalSince1970], 1e9);
    EXPECT_EQ([all fileSize], 7u);
    EXPECT_TRUE([[all fileType] isEqual:NSFileTypeRegular]);
    struct stat info {};
    ASSERT_EQ(stat((folder / "file").c_str(), &info), 0);
    EXPECT_EQ([all filePosixPermissions], info.st_mode & 07777u);
    EXPECT_EQ([all fileSystemFileNumber], info.st_ino);
    EXPECT_EQ([[all objectForKey:NSFileReferenceCount] intValue], 1);
    EXPECT_EQ([all objectForKey:@"no such key"], nil);
    EXPECT_EQ([all objectForKey:(NSString*)nil], nil);
}

TEST_F(FileManagerBirthTime, KeysAndValuesBelongTogether) {
    NSDictionary* const all = attributes();
    NSUInteger count = 0;
    for (NSString* key in all) {
        EXPECT_NE([all objectForKey:key], nil);
        ++count;
    }
    EXPECT_EQ(count, [all count]);
    EXPECT_TRUE([[all allKeys] containsObject:NSFileCreationDate]);
    EXPECT_TRUE([all isEqual:attributes()]);
}

TEST_F(FileManagerBirthTime, CopiesHaveTheBirthTimeToo) {
    NSDictionary* const all = attributes();
    NSDictionary* const copy = [[all copy] autorelease];
    NSMutableDictionary* const changed = [[all mutableCopy] autorelease];
    EXPECT_TRUE([[copy fileCreationDate] isEqual:[all fileCreationDate]]);
    EXPECT_TRUE([[changed objectForKey:NSFileCreationDate] isEqual:[all fileCreationDate]]);
    EXPECT_TRUE([copy isEqual:all]);
    [changed removeObjectForKey:NSFileCreationDate];
    EXPECT_EQ([changed count] + 1, [all count]);
}

TEST_F(FileManagerBirthTime, LinksAreFollowedOrNotAsIsAsked) {
    path = pathOf("link");
    EXPECT_NEAR([[attributes(YES) fileCreationDate] timeIntervalSince1970], birthTime("file"),
                2 * kMicrosecond);
    EXPECT_NEAR([[attributes(NO) fileCreationDate] timeIntervalSince1970],
                birthTime("link", AT_SYMLINK_NOFOLLOW), 2 * kMicrosecond);
    EXPECT_TRUE([[attributes(NO) fileType] isEqual:NSFileTypeSymbolicLink]);
    NSDictionary* const item = [files attributesOfItemAtPath:path error:nullptr];
    EXPECT_NEAR([[item fileCreationDate] timeIntervalSince1970],
                birthTime("link", AT_SYMLINK_NOFOLLOW), 2 * kMicrosecond);
}

TEST_F(FileManagerBirthTime, EnumeratorsTellIt) {
    NSDirectoryEnumerator* const items =
        [files enumeratorAtPath:[NSString stringWithUTF8String:folder.c_str()]];
    bool found = false;
    // Attributes are those of the item that came last.
    while (NSString* const name = [items nextObject]) {
        if (![name isEqual:@"file"])
            continue;
        found = true;
        EXPECT_NEAR([[[items fileAttributes] fileCreationDate] timeIntervalSince1970],
                    birthTime("file"), 2 * kMicrosecond);
    }
    EXPECT_TRUE(found);
}

TEST_F(FileManagerBirthTime, MissingItemsHaveNoAttributes) {
    path = pathOf("none");
    EXPECT_EQ(attributes(), nil);
    NSError* error = nil;
    EXPECT_EQ([files attributesOfItemAtPath:path error:&error], nil);
    EXPECT_NE(error, nil);
}

TEST_F(FileManagerBirthTime, FileSystemWithoutBirthTimesKeepsGNUstepsAnswer) {
    path = @"/sys";
    NSDictionary* const all = attributes();
    EXPECT_NEAR([[all fileCreationDate] timeIntervalSince1970],
                [[all fileModificationDate] timeIntervalSince1970], 1.0);
}

// As in a file system that a program made whole.
TEST_F(FileManagerBirthTime, ItemWithoutABirthTimeKeepsGNUstepsAnswer) {
    const std::string image = folder / "image";
    std::filesystem::create_directory(folder / "content");
    std::ofstream(folder / "content/file") << "content";
    std::filesystem::create_directory(folder / "disk");
    ASSERT_EQ(system(("truncate -s 4M " + image + " && mkfs.ext4 -q -I 256 -d " +
                      (folder / "content").string() + ' ' + image + " && debugfs -w -R " +
                      "'set_inode_field file crtime 0' " + image + " && debugfs -w -R " +
                      "'set_inode_field file crtime_extra 0' " + image + " && mount -o loop,ro " +
                      image + ' ' + (folder / "disk").string())
                         .c_str()),
              0);
    path = pathOf("disk/file");
    EXPECT_NEAR([[attributes() fileCreationDate] timeIntervalSince1970],
                [[attributes() fileModificationDate] timeIntervalSince1970], 60.0);
    EXPECT_EQ(system(("umount " + (folder / "disk").string()).c_str()), 0);
}

TEST_F(FileManagerBirthTime, CopiedFilesKeepTheDateOfTheirChange) {
    ASSERT_TRUE([files copyItemAtPath:path toPath:pathOf("copy") error:nullptr]);
    path = pathOf("copy");
    EXPECT_EQ([[attributes() fileModificationDate] timeIntervalSince1970], 1e9);
}

TEST_F(FileManagerBirthTime, AttributesCanBeGivenToAnotherFile) {
    std::ofstream(folder / "other") << "content";
    ASSERT_TRUE([files changeFileAttributes:attributes() atPath:pathOf("other")]);
    path = pathOf("other");
    EXPECT_EQ([[attributes() fileModificationDate] timeIntervalSince1970], 1e9);
}

}  // namespace
