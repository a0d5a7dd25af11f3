// SPDX-License-Identifier: MIT
// With the other tools of the desktop: trash-cli and GIO.
#include "AppKit/Trash.h"
#include "Sandbox.h"

#include <unistd.h>

#include <gtest/gtest.h>

namespace {

using namespace appkit;
using namespace trashtest;

class TrashTools : public testing::Test {
protected:
    std::string withTools(const std::string& command, const std::string& volumes = "/") {
        return run("XDG_DATA_HOME=" + (sandbox / "data") + " TRASH_VOLUMES=" + volumes +
                   " LC_ALL=C.UTF-8 " + command + " 2>&1");
    }

    Sandbox sandbox;
    TrashPlaces places = sandbox.places();
};

TEST_F(TrashTools, TrashCliListsAndRestoresWhatIsTrashedHere) {
    std::string path = sandbox.makeFile("my photos/\xC3\xA4 one.jpg", "pixels");
    ASSERT_TRUE(moveToTrash(path, places).done());
    EXPECT_NE(withTools("trash-list").find(path), std::string::npos);
    withTools("sh -c 'cd \"" + (sandbox / "my photos") + "\" && echo 0 | trash-restore'");
    EXPECT_EQ(contentOf(path), "pixels");
    EXPECT_EQ(withTools("trash-list"), "");
}

TEST_F(TrashTools, TrashCliListsAndRestoresWhatIsTrashedOnAnotherDisk) {
    MountedImage disk(sandbox);
    std::filesystem::create_directory(disk / "folder");
    writeFile(disk / "folder/one", "on disk");
    ASSERT_TRUE(moveToTrash(disk / "folder/one", places).done());
    EXPECT_NE(withTools("trash-list", disk.path()).find(disk / "folder/one"), std::string::npos);
    withTools("sh -c 'cd " + (disk / "folder") + " && echo 0 | trash-restore'", disk.path());
    EXPECT_EQ(contentOf(disk / "folder/one"), "on disk");
}

TEST_F(TrashTools, TrashCliEmptiesTheTrash) {
    sandbox.makeFile("folder/inner/file");
    TrashOutcome outcome = moveToTrash(sandbox / "folder", places);
    ASSERT_TRUE(outcome.done());
    withTools("trash-empty");
    EXPECT_FALSE(exists(outcome.receipt.trashedPath));
    EXPECT_FALSE(exists(outcome.receipt.infoPath));
}

TEST_F(TrashTools, ItemsOfOneNameFromHereAndFromOtherToolsStayApart) {
    sandbox.makeFile("one", "theirs");
    withTools("trash-put " + (sandbox / "one"));
    TrashOutcome ours = moveToTrash(sandbox.makeFile("one", "ours"), places);
    ASSERT_TRUE(ours.done());
    sandbox.makeFile("one", "gio's");
    withTools("gio trash " + (sandbox / "one"));
    EXPECT_FALSE(exists(sandbox / "one"));
    EXPECT_EQ(namesIn(sandbox / "data/Trash/files").size(), 3u);
    EXPECT_EQ(contentOf(ours.receipt.trashedPath), "ours");
}

}  // namespace
