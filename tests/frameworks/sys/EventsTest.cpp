// SPDX-License-Identifier: MIT
// What a queue tells of real files and folders.
#include "KernelQueue.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

class KernelEvents : public testing::Test {
protected:
    KernelEvents() {
        writeFile(file, "text");
        fs::create_directory(inside);
    }
    void append(const std::string& text) const {
        const int writer = open(file.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC);
        EXPECT_EQ(write(writer, text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(writer);
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    const std::string file = folder / "file";
    const std::string inside = folder / "inside";
    KernelQueue queue;
};

TEST_F(KernelEvents, WriteThatAppendsIsAWriteAndAnExtension) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    append("more");
    EXPECT_EQ(queue.notes(), NOTE_WRITE | NOTE_EXTEND);
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelEvents, WriteInPlaceAndTruncationAreNoExtension) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    const int writer = open(file.c_str(), O_WRONLY | O_CLOEXEC);
    EXPECT_EQ(write(writer, "x", 1), 1);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    EXPECT_EQ(ftruncate(writer, 0), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    EXPECT_EQ(write(writer, "yy", 2), 2);
    EXPECT_EQ(queue.notes(), NOTE_WRITE | NOTE_EXTEND);
    close(writer);
}

TEST_F(KernelEvents, PermissionsTimesAndOwnersAreAttributes) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(chmod(file.c_str(), 0600), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    EXPECT_EQ(utimensat(AT_FDCWD, file.c_str(), nullptr, 0), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    EXPECT_EQ(chown(file.c_str(), 0, 0), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelEvents, SecondNameIsALink) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    fs::create_hard_link(file, folder / "second");
    EXPECT_EQ(queue.notes(), NOTE_LINK | NOTE_ATTRIB);
    fs::remove(folder / "second");
    EXPECT_EQ(queue.notes(), NOTE_LINK | NOTE_ATTRIB);
}

TEST_F(KernelEvents, DeletionIsToldAlthoughTheDescriptorIsOpen) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    fs::remove(file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
}

TEST_F(KernelEvents, DeletionIsToldWhileAnotherProgramHoldsTheFile) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    const int holder = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    fs::remove(file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
    EXPECT_EQ(queue.notes(), 0u);
    close(holder);
}

TEST_F(KernelEvents, DeletionOfOneOfTwoNamesIsTold) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    fs::create_hard_link(file, folder / "second");
    queue.notes();
    fs::remove(file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
}

TEST_F(KernelEvents, RenameIsTold) {
    OpenItem item(file);
    OpenItem directory(inside);
    ASSERT_EQ(queue.add(item), 0);
    fs::rename(file, folder / "elsewhere");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_RENAME));
    ASSERT_EQ(queue.add(directory), 0);
    fs::rename(inside, folder / "outside");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_RENAME));
}

TEST_F(KernelEvents, RenamedFileIsStillWatched) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    fs::rename(file, folder / "elsewhere");
    queue.notes();
    writeFile(folder / "elsewhere", "x");
    EXPECT_EQ(queue.notes() & NOTE_WRITE, static_cast<unsigned>(NOTE_WRITE));
}

TEST_F(KernelEvents, ChangeOfAttributesBeforeARenameIsNoDeletion) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(chmod(file.c_str(), 0600), 0);
    fs::rename(file, folder / "elsewhere");
    EXPECT_EQ(queue.notes(), NOTE_RENAME | NOTE_ATTRIB);
}

TEST_F(KernelEvents, ChangeOfAttributesBelowAMovedFolderIsNoDeletion) {
    writeFile(inside + "/file", "text");
    OpenItem item(inside + "/file");
    ASSERT_EQ(queue.add(item), 0);
    fs::rename(inside, folder / "outside");
    EXPECT_EQ(chmod((folder / "outside/file").c_str(), 0600), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
    fs::remove(folder / "outside/file");
    EXPECT_EQ(queue.notes() & NOTE_DELETE, static_cast<unsigned>(NOTE_DELETE));
}

TEST_F(KernelEvents, EditorsSaveByRenameIsADeletionOfTheOldFile) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    writeFile(folder / "file.new", "new");
    fs::rename(folder / "file.new", file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
}

TEST_F(KernelEvents, EditorsSaveIsADeletionWhileTheOldFileIsOpen) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item), 0);
    const int holder = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    writeFile(folder / "file.new", "new");
    fs::rename(folder / "file.new", file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
    close(holder);
}

TEST_F(KernelEvents, EntriesOfAFolderThatComeGoAndMoveAreWrites) {
    OpenItem item(inside);
    ASSERT_EQ(queue.add(item), 0);
    writeFile(inside + "/child", "x");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    fs::rename(inside + "/child", inside + "/other");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    fs::remove(inside + "/other");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    fs::rename(file, inside + "/child");
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_WRITE));
    fs::create_directory(inside + "/folder");
    EXPECT_EQ(queue.notes(), NOTE_WRITE | NOTE_LINK);
}

TEST_F(KernelEvents, WhatHappensToTheEntriesThemselvesIsNotTheFoldersBusiness) {
    writeFile(inside + "/child", "x");
    OpenItem item(inside);
    ASSERT_EQ(queue.add(item), 0);
    writeFile(inside + "/child", "more");
    EXPECT_EQ(chmod((inside + "/child").c_str(), 0600), 0);
    EXPECT_EQ(queue.notes(), 0u);
}

TEST_F(KernelEvents, FoldersOwnAttributesAreTold) {
    OpenItem item(inside);
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(chmod(inside.c_str(), 0700), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelEvents, DeletionOfAFolderIsTold) {
    OpenItem item(inside);
    ASSERT_EQ(queue.add(item), 0);
    fs::remove(inside);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
}

TEST_F(KernelEvents, OrdinaryDescriptorStaysAsItIsAndTellsTheDeletion) {
    const int item = open(file.c_str(), O_RDONLY | O_CLOEXEC);
    const int directory = open(inside.c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(queue.add(item), 0);
    ASSERT_EQ(queue.add(directory), 0);
    fs::remove(file);
    EXPECT_EQ(queue.notes(), NOTE_DELETE | NOTE_LINK);
    fs::remove(inside);
    EXPECT_EQ(queue.awaited(), NOTE_DELETE | NOTE_LINK);
    EXPECT_EQ(queue.notes(), 0u);
    char text[4];
    EXPECT_EQ(read(item, text, sizeof text), 4);
    close(item);
    close(directory);
}

TEST_F(KernelEvents, DeletionBetweenOpeningAndAddingIsTold) {
    OpenItem item(file);
    fs::remove(file);
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(queue.notes() & NOTE_DELETE, static_cast<unsigned>(NOTE_DELETE));
}

TEST_F(KernelEvents, NotesThatNobodyAskedForMakeNoEvent) {
    OpenItem item(file);
    ASSERT_EQ(queue.add(item, NOTE_DELETE), 0);
    append("more");
    EXPECT_EQ(queue.notes(), 0u);
    fs::remove(file);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_DELETE));
}

TEST_F(KernelEvents, PipeIsOpenedWithoutWaitingAndItsAttributesAreTold) {
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    OpenItem item(pipe);
    ASSERT_GE(item, 0);
    ASSERT_EQ(queue.add(item), 0);
    EXPECT_EQ(chmod(pipe.c_str(), 0640), 0);
    EXPECT_EQ(queue.notes(), static_cast<unsigned>(NOTE_ATTRIB));
}

TEST_F(KernelEvents, LinkIsFollowed) {
    fs::create_symlink(file, folder / "link");
    OpenItem item(folder / "link");
    ASSERT_EQ(queue.add(item), 0);
    append("more");
    EXPECT_EQ(queue.notes(), NOTE_WRITE | NOTE_EXTEND);
}

}  // namespace

}  // namespace tav::test
