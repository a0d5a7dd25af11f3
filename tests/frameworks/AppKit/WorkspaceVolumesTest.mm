// SPDX-License-Identifier: MIT
// The workspace as programs ask it, about real mounts. Needs root: mounts in a space of its own.
#import <AppKit/AppKit.h>

#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;

class WorkspaceVolumes : public testing::Test {
protected:
    void SetUp() override { pool = [[NSAutoreleasePool alloc] init]; }
    void TearDown() override { [pool release]; }

    static NSWorkspace* workspace() { return [NSWorkspace sharedWorkspace]; }
    static NSString* text(const std::string& path) {
        return [NSString stringWithUTF8String:path.c_str()];
    }
    // Those that were mounted by the test, behind what the machine has.
    static std::vector<std::string> paths() {
        std::vector<std::string> paths;
        for (NSString* path in [workspace() mountedLocalVolumePaths])
            paths.emplace_back([path UTF8String]);
        return paths;
    }
    std::vector<std::string> addedTo(const std::vector<std::string>& before) const {
        std::vector<std::string> after = paths();
        after.erase(after.begin(), after.begin() + static_cast<std::ptrdiff_t>(before.size()));
        return after;
    }

    NSAutoreleasePool* pool = nil;
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(WorkspaceVolumes, BeginWithTheStartUpDiskAndHoldNothingOfTheKernels) {
    const std::vector<std::string> all = paths();
    EXPECT_EQ(all.front(), "/");
    for (const std::string& path : all)
        for (const char* folderOfKernel : {"/proc", "/sys", "/dev", "/run"})
            EXPECT_NE(path.substr(0, path.find('/', 1)), folderOfKernel);
}

TEST_F(WorkspaceVolumes, AreListedByTheirEntriesInTheOrderOfMounting) {
    const std::vector<std::string> before = paths();
    const MountedImage second(folder / "z", folder.path());
    const MountedMemory inside("/Volumes/My Disk");
    const MountedImage bare(folder / "bare", folder.path());
    fs::create_symlink(folder / "z", "/Volumes/Zed");
    EXPECT_EQ(addedTo(before),
              (std::vector<std::string>{"/Volumes/Zed", "/Volumes/My Disk", folder / "bare"}));
    fs::remove("/Volumes/Zed");
}

TEST_F(WorkspaceVolumes, AreListedOnceEach) {
    const std::vector<std::string> before = paths();
    const MountedImage image(folder / "disk", folder.path());
    const MountedImage above(folder / "disk", folder.path());
    const BoundFolder again(folder / "disk", folder / "again");
    fs::create_symlink(folder / "disk", "/Volumes/One");
    fs::create_symlink(folder / "disk", "/Volumes/Two");
    fs::create_symlink(folder / "again", "/Volumes/Again");
    EXPECT_EQ(addedTo(before), (std::vector<std::string>{"/Volumes/One"}));
    for (const char* name : {"One", "Two", "Again"})
        fs::remove(std::string("/Volumes/") + name);
}

TEST_F(WorkspaceVolumes, BoundFolderCountsInVolumesAndNowhereElse) {
    const std::vector<std::string> before = paths();
    fs::create_directory(folder / "pictures");
    const BoundFolder outside(folder / "pictures", folder / "outside");
    const BoundFolder inside(folder / "pictures", "/Volumes/Pictures");
    EXPECT_EQ(addedTo(before), (std::vector<std::string>{"/Volumes/Pictures"}));
}

TEST_F(WorkspaceVolumes, NamesThatAreNoTextAreLeftOut) {
    const std::vector<std::string> before = paths();
    const MountedMemory latin("/Volumes/\xff\xfe");
    const MountedMemory umlaut("/Volumes/\xc3\xa4 \"x\"\n\t\\");
    EXPECT_EQ(addedTo(before), (std::vector<std::string>{"/Volumes/\xc3\xa4 \"x\"\n\t\\"}));
}

TEST_F(WorkspaceVolumes, ImageIsRemovableAndWritableUnlessItIsReadOnly) {
    const MountedImage writable(folder / "a", folder.path());
    const MountedImage readOnly(folder / "b", folder.path(), "", "loop,ro");
    fs::create_symlink(folder / "b", "/Volumes/Link");
    BOOL isRemovable = NO, isWritable = NO, isUnmountable = NO;
    NSString* description = nil;
    NSString* type = nil;
    ASSERT_TRUE([workspace() getFileSystemInfoForPath:text(writable.point())
                                          isRemovable:&isRemovable
                                           isWritable:&isWritable
                                        isUnmountable:&isUnmountable
                                          description:&description
                                                 type:&type]);
    EXPECT_TRUE(isRemovable && isWritable && isUnmountable);
    EXPECT_TRUE([description isEqualToString:@"disk image"]);
    EXPECT_TRUE([type isEqualToString:@"ext4"]);
    ASSERT_TRUE([workspace() getFileSystemInfoForPath:@"/Volumes/Link"
                                          isRemovable:nullptr
                                           isWritable:&isWritable
                                        isUnmountable:nullptr
                                          description:nullptr
                                                 type:nullptr]);
    EXPECT_FALSE(isWritable);
    fs::remove("/Volumes/Link");
}

TEST_F(WorkspaceVolumes, NothingIsSaidOfWhatLiesNowhere) {
    for (NSString* path in @[ @"/no such item", @"relative", @"" ]) {
        BOOL isRemovable = 7;
        EXPECT_FALSE([workspace() getFileSystemInfoForPath:path
                                               isRemovable:&isRemovable
                                                isWritable:nullptr
                                             isUnmountable:nullptr
                                               description:nullptr
                                                      type:nullptr]);
        EXPECT_EQ(isRemovable, 7);
    }
    EXPECT_FALSE([workspace() getFileSystemInfoForPath:nil
                                           isRemovable:nullptr
                                            isWritable:nullptr
                                         isUnmountable:nullptr
                                           description:nullptr
                                                  type:nullptr]);
}

NSBitmapImageRep* pixelsOf(NSImage* image) {
    NSImageRep* first = [[image representations] objectAtIndex:0];
    return [first isKindOfClass:[NSBitmapImageRep class]] ? static_cast<NSBitmapImageRep*>(first)
                                                          : nil;
}

// How many pixels are drawn at all.
int opaquePixels(NSBitmapImageRep* pixels) {
    int count = 0;
    for (NSInteger y = 0; y < [pixels pixelsHigh]; ++y)
        for (NSInteger x = 0; x < [pixels pixelsWide]; ++x)
            count += [pixels bitmapData][y * [pixels bytesPerRow] + x * 4 + 3] == 255;
    return count;
}

TEST_F(WorkspaceVolumes, IconIsTheThemesInRealPixels) {
    const MountedImage image(folder / "disk", folder.path());
    const DeadShare share(folder / "share");
    NSBitmapImageRep* disk = pixelsOf([workspace() iconForFile:text(image.point())]);
    NSBitmapImageRep* remote = pixelsOf([workspace() iconForFile:text(share.point())]);
    for (NSBitmapImageRep* pixels : {disk, remote}) {
        ASSERT_NE(pixels, nil);
        EXPECT_EQ([pixels size].width, 48);
        EXPECT_EQ([pixels size].height, 48);
        EXPECT_EQ([pixels bitsPerPixel], 32);
        EXPECT_EQ([pixels bytesPerRow], 48 * 4);
        EXPECT_GT(opaquePixels(pixels), 48 * 48 / 3);
    }
    EXPECT_NE(memcmp([disk bitmapData], [remote bitmapData], 48 * 48 * 4), 0);
}

TEST_F(WorkspaceVolumes, IconOfAnythingElseIsGNUsteps) {
    writeFile(folder / "text.txt", "text");
    NSImage* file = [workspace() iconForFile:text(folder / "text.txt")];
    EXPECT_NE(file, nil);
    EXPECT_NE([[workspace() iconForFile:@"/"] name], [file name]);
    EXPECT_EQ([[workspace() iconForFile:@"/"] name], nil);
    EXPECT_NE([[workspace() iconForFile:@"/usr"] name], nil);
}

TEST_F(WorkspaceVolumes, EveryThreadGetsTheIcon) {
    std::vector<std::thread> threads;
    std::atomic<int> icons = 0;
    for (int i = 0; i < 8; ++i)
        threads.emplace_back([&] {
            NSAutoreleasePool* own = [[NSAutoreleasePool alloc] init];
            icons += pixelsOf([workspace() iconForFile:@"/"]) != nil;
            [own release];
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(icons, 8);
}

TEST_F(WorkspaceVolumes, ShareWithoutAServerKeepsNobodyWaiting) {
    const DeadShare share(folder / "share");
    fs::create_symlink(share.point(), "/Volumes/Share");
    EXPECT_EQ(paths().back(), "/Volumes/Share");
    BOOL isRemovable = NO;
    EXPECT_TRUE([workspace() getFileSystemInfoForPath:@"/Volumes/Share"
                                          isRemovable:&isRemovable
                                           isWritable:nullptr
                                        isUnmountable:nullptr
                                          description:nullptr
                                                 type:nullptr]);
    EXPECT_TRUE(isRemovable);
    EXPECT_NE([workspace() iconForFile:@"/Volumes/Share"], nil);
    NSFileManager* files = [NSFileManager defaultManager];
    NSError* error = nil;
    EXPECT_EQ([files attributesOfFileSystemForPath:@"/Volumes/Share" error:&error], nil);
    EXPECT_EQ([error code], ETIMEDOUT);
    EXPECT_EQ([files attributesOfFileSystemForPath:@"/Volumes/Share" error:nullptr], nil);
    EXPECT_EQ([files fileSystemAttributesAtPath:@"/Volumes/Share"], nil);
    fs::remove("/Volumes/Share");
}

TEST_F(WorkspaceVolumes, SizesOfADiskAreTheOnesOfGNUstep) {
    const MountedImage image(folder / "disk", folder.path());
    NSDictionary* sizes =
        [[NSFileManager defaultManager] attributesOfFileSystemForPath:text(image.point())
                                                                error:nullptr];
    const unsigned long long size = [[sizes objectForKey:NSFileSystemSize] unsignedLongLongValue];
    EXPECT_GT(size, 2'000'000u);
    EXPECT_LT(size, 4'200'000u);
    EXPECT_LE([[sizes objectForKey:NSFileSystemFreeSize] unsignedLongLongValue], size);
}

}  // namespace
