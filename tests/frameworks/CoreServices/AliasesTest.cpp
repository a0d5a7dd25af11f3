// SPDX-License-Identifier: MIT
#include "AliasBytes.h"
#include "tests/support/TemporaryFolder.h"

#include <CoreServices/CoreServices.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace aliastest;
namespace fs = std::filesystem;

class AliasesTest : public testing::Test {
protected:
    std::string root() const { return folder.path().string(); }

    std::string makeLink(const std::string& name, const std::string& url) {
        std::string path = folder / (name + ".desktop");
        tav::test::writeFile(path, "[Desktop Entry]\nType=Link\nURL=" + url + "\n");
        return path;
    }

    static CFURLRef urlOf(const std::string& path) {
        return CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault,
                                                       reinterpret_cast<const UInt8*>(path.data()),
                                                       static_cast<CFIndex>(path.size()), false);
    }

    static bool refer(const std::string& path, FSRef* reference) {
        CFURLRef url = urlOf(path);
        bool found = CFURLGetFSRef(url, reference);
        CFRelease(url);
        return found;
    }

    static FSRef referenceTo(const std::string& path) {
        FSRef reference;
        EXPECT_TRUE(refer(path, &reference)) << path;
        return reference;
    }

    // The type by which a caller tells aliases to folders and disks.
    static OSType fileTypeOf(const std::string& path, bool* isValid = nullptr) {
        FSRef reference = referenceTo(path);
        AliasHandle alias = nullptr;
        EXPECT_EQ(FSNewAliasMinimal(&reference, &alias), noErr);
        FSAliasInfoBitmap which = 0;
        FSAliasInfo info;
        EXPECT_EQ(FSCopyAliasInfo(alias, nullptr, nullptr, nullptr, &which, &info), noErr);
        DisposeHandle(reinterpret_cast<Handle>(alias));
        if (isValid != nullptr)
            *isValid = (which & kFSAliasInfoFinderInfo) != 0;
        return info.fileType;
    }

    tav::test::TemporaryFolder folder;
};

TEST_F(AliasesTest, ReferencesHoldThePathAsItIs) {
    std::string path = root() + "/a b";
    fs::create_directory(path);
    FSRef reference = referenceTo(path + "/");
    EXPECT_STREQ(coreservices::pathOf(reference), path.c_str());
    CFURLRef url = CFURLCreateFromFSRef(kCFAllocatorDefault, &reference);
    ASSERT_NE(url, nullptr);
    EXPECT_TRUE(CFURLHasDirectoryPath(url));
    UInt8 back[4096];
    ASSERT_TRUE(CFURLGetFileSystemRepresentation(url, true, back, sizeof back));
    EXPECT_STREQ(reinterpret_cast<char*>(back), path.c_str());
    CFRelease(url);
}

TEST_F(AliasesTest, ReferencesAreToTheLinkItself) {
    fs::create_symlink("nothing", root() + "/link");
    FSRef reference = referenceTo(root() + "/link");
    EXPECT_STREQ(coreservices::pathOf(reference), (root() + "/link").c_str());
}

TEST_F(AliasesTest, ThereAreNoReferencesToNothing) {
    FSRef reference;
    EXPECT_FALSE(refer(root() + "/missing", &reference));
    EXPECT_FALSE(refer("/" + std::string(5000, 'x'), &reference));
    EXPECT_FALSE(CFURLGetFSRef(nullptr, &reference));
    EXPECT_EQ(CFURLCreateFromFSRef(kCFAllocatorDefault, nullptr), nullptr);
}

TEST_F(AliasesTest, ReferencesToNamesThatAreNotUtf8HaveNoUrl) {
    FSRef reference;
    ASSERT_TRUE(coreservices::setPath(reference, root() + "/\xFF"));
    EXPECT_EQ(CFURLCreateFromFSRef(kCFAllocatorDefault, &reference), nullptr);
    EXPECT_FALSE(coreservices::setPath(reference, "relative"));
    EXPECT_FALSE(coreservices::setPath(reference, "/" + std::string(4095, 'x')));
    EXPECT_TRUE(coreservices::setPath(reference, "/" + std::string(4094, 'x')));
}

TEST_F(AliasesTest, TheTypeTellsWhatTheAliasFileLeadsTo) {
    EXPECT_EQ(fileTypeOf(makeLink("disk", "/")), OSType{kContainerHardDiskAliasType});
    EXPECT_EQ(fileTypeOf(makeLink("folder", root())), OSType{kContainerFolderAliasType});
    EXPECT_EQ(fileTypeOf(makeLink("gone", root() + "/gone/")), OSType{kContainerFolderAliasType});
    EXPECT_EQ(fileTypeOf(makeLink("net", "sftp://host/x")), OSType{kContainerFolderAliasType});
    EXPECT_EQ(fileTypeOf(makeLink("file", root() + "/net.desktop")),
              OSType{kContainerFolderAliasType})
        << "what stands at the end of the chain counts";
    tav::test::writeFile(folder / "text", "text");
    EXPECT_EQ(fileTypeOf(makeLink("text", root() + "/text")), OSType{kGenericAliasFileType});
    bool isValid = true;
    EXPECT_EQ(fileTypeOf(root() + "/text", &isValid), 0u);
    EXPECT_FALSE(isValid);
}

TEST_F(AliasesTest, InformationIsAboutTheItemItself) {
    std::string name = "\u00E4 \U0001F600\xFF";
    fs::create_directory(root() + "/" + name);
    FSRef reference;
    ASSERT_TRUE(coreservices::setPath(reference, root() + "/" + name));
    AliasHandle alias = nullptr;
    ASSERT_EQ(FSNewAliasMinimal(&reference, &alias), noErr);
    HFSUniStr255 target;
    HFSUniStr255 volume;
    CFStringRef path = nullptr;
    FSAliasInfo info;
    ASSERT_EQ(FSCopyAliasInfo(alias, &target, &volume, &path, nullptr, &info), noErr);
    EXPECT_EQ(std::u16string(target.unicode, target.unicode + target.length),
              u"\u00E4 \U0001F600\uFFFD");
    EXPECT_GT(volume.length, 0);
    EXPECT_EQ(path, nullptr);
    EXPECT_TRUE(info.isDirectory);
    DisposeHandle(reinterpret_cast<Handle>(alias));
}

TEST_F(AliasesTest, InformationHasThePathAsText) {
    FSRef reference = referenceTo(root());
    AliasHandle alias = nullptr;
    ASSERT_EQ(FSNewAliasMinimal(&reference, &alias), noErr);
    CFStringRef path = nullptr;
    ASSERT_EQ(FSCopyAliasInfo(alias, nullptr, nullptr, &path, nullptr, nullptr), noErr);
    char text[4096];
    ASSERT_TRUE(CFStringGetCString(path, text, sizeof text, kCFStringEncodingUTF8));
    EXPECT_EQ(text, root());
    CFRelease(path);
    DisposeHandle(reinterpret_cast<Handle>(alias));
}

TEST_F(AliasesTest, ResolvingReplacesTheReference) {
    FSRef reference = referenceTo(makeLink("1", root()));
    Boolean isFolder = false;
    Boolean wasAliased = false;
    EXPECT_EQ(FSResolveAliasFileWithMountFlags(&reference, true, &isFolder, &wasAliased,
                                               kResolveAliasFileNoUI),
              noErr);
    EXPECT_TRUE(isFolder);
    EXPECT_TRUE(wasAliased);
    EXPECT_EQ(coreservices::pathOf(reference), root());
}

TEST_F(AliasesTest, ResolvingOneStepStopsAtTheNextAlias) {
    makeLink("1", root());
    FSRef reference = referenceTo(makeLink("2", root() + "/1.desktop"));
    Boolean isFolder = true;
    Boolean wasAliased = false;
    EXPECT_EQ(FSResolveAliasFile(&reference, false, &isFolder, &wasAliased), noErr);
    EXPECT_FALSE(isFolder);
    EXPECT_EQ(coreservices::pathOf(reference), root() + "/1.desktop");
    EXPECT_EQ(FSResolveAliasFile(&reference, true, &isFolder, &wasAliased), noErr);
    EXPECT_TRUE(isFolder);
}

TEST_F(AliasesTest, ResolvingLeavesTheReferenceWhereItFails) {
    std::string alias = makeLink("1", root() + "/gone");
    FSRef reference = referenceTo(alias);
    Boolean isFolder = true;
    Boolean wasAliased = false;
    EXPECT_EQ(FSResolveAliasFile(&reference, true, &isFolder, &wasAliased), fnfErr);
    EXPECT_TRUE(wasAliased);
    EXPECT_FALSE(isFolder);
    EXPECT_EQ(coreservices::pathOf(reference), alias);
    reference = referenceTo(makeLink("2", "/Volumes/There is no such volume/x"));
    EXPECT_EQ(FSResolveAliasFileWithMountFlags(&reference, true, &isFolder, &wasAliased,
                                               kResolveAliasFileNoUI),
              nsvErr);
}

TEST_F(AliasesTest, ResolvingWhatIsNoAliasIsNoError) {
    FSRef reference = referenceTo(root());
    Boolean isFolder = false;
    Boolean wasAliased = true;
    EXPECT_EQ(FSResolveAliasFile(&reference, true, &isFolder, &wasAliased), noErr);
    EXPECT_TRUE(isFolder);
    EXPECT_FALSE(wasAliased);
    EXPECT_EQ(coreservices::pathOf(reference), root());
}

TEST_F(AliasesTest, MissingArgumentsAreRefused) {
    FSRef reference = referenceTo(root());
    Boolean flag = false;
    EXPECT_EQ(FSResolveAliasFile(nullptr, true, &flag, &flag), paramErr);
    EXPECT_EQ(FSResolveAliasFile(&reference, true, nullptr, &flag), paramErr);
    EXPECT_EQ(FSResolveAliasFile(&reference, true, &flag, nullptr), paramErr);
    EXPECT_EQ(FSNewAliasMinimal(&reference, nullptr), paramErr);
    AliasHandle alias = nullptr;
    EXPECT_EQ(FSNewAliasMinimal(nullptr, &alias), paramErr);
    EXPECT_EQ(FSCopyAliasInfo(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), paramErr);
    DisposeHandle(nullptr);
}

TEST_F(AliasesTest, AnItemThatHasGoneHasNoAlias) {
    fs::create_directory(root() + "/x");
    FSRef reference = referenceTo(root() + "/x");
    fs::remove(root() + "/x");
    AliasHandle alias = reinterpret_cast<AliasHandle>(&reference);
    EXPECT_EQ(FSNewAliasMinimal(&reference, &alias), fnfErr);
    EXPECT_EQ(alias, nullptr);
    Boolean flag = false;
    EXPECT_EQ(FSResolveAliasFile(&reference, true, &flag, &flag), fnfErr);
}

}  // namespace
