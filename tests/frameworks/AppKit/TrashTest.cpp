// SPDX-License-Identifier: MIT
#include "AppKit/Trash.h"
#include "Sandbox.h"

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using namespace trashtest;
using testing::Test;

using Names = std::vector<std::string>;

class TrashTest : public Test {
protected:
    TrashOutcome trash(const std::string& path) { return moveToTrash(path, places); }

    // Trashes what must go, and checks that both halves are there.
    TrashReceipt trashed(const std::string& path) {
        TrashOutcome outcome = trash(path);
        EXPECT_TRUE(outcome.done()) << outcome.explanation();
        EXPECT_FALSE(exists(path));
        EXPECT_TRUE(exists(outcome.receipt.trashedPath)) << outcome.receipt.trashedPath;
        EXPECT_TRUE(exists(outcome.receipt.infoPath)) << outcome.receipt.infoPath;
        return outcome.receipt;
    }

    void expectNothingInTrash() {
        EXPECT_EQ(namesIn(sandbox / "data/Trash/files"), Names());
        EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), Names());
    }

    Sandbox sandbox;
    TrashPlaces places = sandbox.places();
};

TEST_F(TrashTest, AFileOfTheHomeFileSystemGoesToTheHomeTrash) {
    TrashReceipt receipt = trashed(sandbox.makeFile("photos/one.jpg", "pixels"));
    EXPECT_EQ(receipt.originalPath, sandbox / "photos/one.jpg");
    EXPECT_EQ(receipt.trashedPath, sandbox / "data/Trash/files/one.jpg");
    EXPECT_EQ(receipt.infoPath, sandbox / "data/Trash/info/one.jpg.trashinfo");
    EXPECT_EQ(contentOf(receipt.trashedPath), "pixels");
}

TEST_F(TrashTest, TheInfoFileTellsWhereTheItemWasAndWhen) {
    setenv("TZ", "UTC", 1);
    tzset();
    places.clock = [] { return std::time_t{1'000'000'000}; };
    TrashReceipt receipt = trashed(sandbox.makeFile("a b%\"'\xC3\xA4.txt"));
    EXPECT_EQ(contentOf(receipt.infoPath), "[Trash Info]\nPath=" + sandbox.path() +
                                               "/a%20b%25%22%27%C3%A4.txt\n"
                                               "DeletionDate=2001-09-09T01:46:40\n");
}

TEST_F(TrashTest, TheTrashIsForTheUserAlone) {
    trashed(sandbox.makeFile("one"));
    struct stat info;
    ASSERT_EQ(stat((sandbox / "data/Trash/files").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0700u);
}

TEST_F(TrashTest, AFolderGoesWithAllItHolds) {
    sandbox.makeFile("folder/inner/file", "deep");
    TrashReceipt receipt = trashed(sandbox / "folder/");
    EXPECT_EQ(contentOf(receipt.trashedPath + "/inner/file"), "deep");
}

TEST_F(TrashTest, ALinkGoesItselfAndWhatItLeadsToStays) {
    std::string target = sandbox.makeFile("target");
    for (const std::string& to : {target, sandbox / "nothing", sandbox.path()}) {
        std::filesystem::create_symlink(to, sandbox / "link");
        TrashReceipt receipt = trashed(sandbox / "link");
        EXPECT_EQ(std::filesystem::read_symlink(receipt.trashedPath), to);
    }
    EXPECT_TRUE(exists(target));
}

TEST_F(TrashTest, SpecialFilesAreTrashedLikeOthers) {
    ASSERT_EQ(mkfifo((sandbox / "pipe").c_str(), 0600), 0);
    trashed(sandbox / "pipe");
}

TEST_F(TrashTest, ItemsOfOneNameAllKeepTheirContent) {
    Names contents;
    for (int i = 0; i < 40; ++i)
        contents.push_back(
            contentOf(trashed(sandbox.makeFile("photo.jpg", std::to_string(i))).trashedPath));
    for (int i = 0; i < 40; ++i)
        EXPECT_EQ(contents[static_cast<size_t>(i)], std::to_string(i));
    EXPECT_TRUE(exists(sandbox / "data/Trash/files/photo 2.jpg"));
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files").size(), 40u);
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info").size(), 40u);
}

TEST_F(TrashTest, AnItemLeftInTheTrashWithoutAnInfoFileIsNotReplaced) {
    sandbox.makeFile("data/Trash/files/name", "orphan");
    TrashReceipt receipt = trashed(sandbox.makeFile("name", "new"));
    EXPECT_EQ(contentOf(sandbox / "data/Trash/files/name"), "orphan");
    EXPECT_EQ(contentOf(receipt.trashedPath), "new");
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), Names{"name 2.trashinfo"});
}

TEST_F(TrashTest, HostileNamesAreKeptByteForByteAndComeBack) {
    const std::string longest(255, 'x');
    const std::string longUmlauts = [] {
        std::string name;
        for (int i = 0; i < 127; ++i)
            name += "\xC3\xB6";
        return name;
    }();
    for (const std::string& name :
         {std::string("quote\"'`$(touch x)"), std::string("new\nline"), std::string("\xFF\xFEraw"),
          std::string(" "), std::string("-rf"), std::string("%41"), std::string(".hidden"),
          std::string("..."), std::string("a.trashinfo"), longest, longUmlauts,
          std::string(200, 'y') + ".jpeg" + std::string(50, 'z'), std::string(255, '\x80')}) {
        TrashReceipt receipt = trashed(sandbox.makeFile("names/" + name, name));
        EXPECT_EQ(receipt.originalPath, sandbox / "names/" + name);
        EXPECT_TRUE(restoreFromTrash(receipt).done());
        EXPECT_EQ(contentOf(sandbox / "names/" + name), name);
    }
    expectNothingInTrash();
}

TEST_F(TrashTest, TheLongestNamesStayApartInTheTrash) {
    for (int i = 0; i < 3; ++i)
        trashed(sandbox.makeFile(std::string(251, 'x') + ".jpg"));
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files").size(), 3u);
}

TEST_F(TrashTest, WhatIsMissingIsReportedAsMissing) {
    EXPECT_EQ(trash(sandbox / "nothing").status, TrashStatus::Missing);
    EXPECT_EQ(trash(sandbox / "no folder/nothing").status, TrashStatus::Missing);
    EXPECT_EQ(trash("").status, TrashStatus::Missing);
    EXPECT_FALSE(exists(sandbox / "data"));
}

TEST_F(TrashTest, PathsThatNameNoItemAreRefused) {
    for (const char* path : {"/", ".", "..", "/tmp/..", "//"})
        EXPECT_FALSE(trash(path).done()) << path;
    EXPECT_FALSE(trash(sandbox.makeFile("a") + std::string("\0b", 2)).done());
    EXPECT_TRUE(exists(sandbox / "a"));
}

TEST_F(TrashTest, ARelativePathCountsFromTheCurrentFolder) {
    sandbox.makeFile("here/file");
    ASSERT_EQ(chdir((sandbox / "here").c_str()), 0);
    EXPECT_EQ(trash("file").receipt.originalPath, sandbox / "here/file");
    ASSERT_EQ(chdir("/"), 0);
}

TEST_F(TrashTest, LinksInTheFolderPartAreResolvedInTheReceipt) {
    sandbox.makeFile("real/file");
    std::filesystem::create_symlink("real", sandbox / "way");
    EXPECT_EQ(trashed(sandbox / "way/file").originalPath, sandbox / "real/file");
}

TEST_F(TrashTest, TheTrashIsNotTrashed) {
    TrashReceipt receipt = trashed(sandbox.makeFile("one"));
    for (const std::string& path : {receipt.trashedPath, places.homeTrash, sandbox / "data"})
        EXPECT_EQ(trash(path).status, TrashStatus::InTrash) << path;
}

TEST_F(TrashTest, ATrashThatCannotBeMadeLeavesTheItemWhereItWas) {
    std::string path = sandbox.makeFile("one");
    sandbox.makeFile("data", "a file in the way");
    TrashOutcome outcome = trash(path);
    EXPECT_EQ(outcome.status, TrashStatus::NoTrash);
    EXPECT_EQ(outcome.systemError, ENOTDIR);
    EXPECT_EQ(contentOf(path), "content");
}

TEST_F(TrashTest, AFailureLeavesNoInfoFileBehind) {
    std::string path = sandbox.makeFile("one");
    trashed(sandbox.makeFile("two"));
    ASSERT_EQ(std::system(("chattr +i " + path).c_str()), 0);
    EXPECT_EQ(trash(path).status, TrashStatus::NotPermitted);
    ASSERT_EQ(std::system(("chattr -i " + path).c_str()), 0);
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info"), Names{"two.trashinfo"});
}

TEST_F(TrashTest, ManyThreadsTrashOneNameWithoutLoss) {
    constexpr int kThreads = 8, kFiles = 25;
    std::vector<std::thread> threads;
    std::atomic<int> done = 0;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < kFiles; ++i) {
                std::string folder = std::to_string(t) + "-" + std::to_string(i);
                done += trash(sandbox.makeFile(folder + "/same.txt", folder)).done();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(done, kThreads * kFiles);
    Names infos = namesIn(sandbox / "data/Trash/info");
    EXPECT_EQ(infos.size(), static_cast<size_t>(kThreads * kFiles));
    for (const std::string& info : infos) {
        std::string name = info.substr(0, info.size() - 10);
        std::string folder = contentOf(sandbox / "data/Trash/files/" + name);
        EXPECT_NE(contentOf(sandbox / "data/Trash/info/" + info).find("/" + folder + "/same.txt"),
                  std::string::npos);
    }
}

TEST_F(TrashTest, TwoThreadsAfterOneItemGetItOnce) {
    for (int i = 0; i < 50; ++i) {
        std::string path = sandbox.makeFile("contested");
        std::atomic<int> done = 0;
        std::thread other([&] { done += trash(path).done(); });
        done += trash(path).done();
        other.join();
        EXPECT_EQ(done, 1);
    }
    EXPECT_EQ(namesIn(sandbox / "data/Trash/info").size(), 50u);
}

}  // namespace
