// SPDX-License-Identifier: MIT
// Roots whose way changes, while streams run and while they start.
#include "StreamRecorder.h"
#include "tests/support/TemporaryFolder.h"

#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <thread>

using tav::test::StreamRecorder;
using tav::test::TemporaryFolder;

namespace {

namespace fs = std::filesystem;

constexpr FSEventStreamEventFlags kRootChanged = kFSEventStreamEventFlagRootChanged;

class FSEventsRoots : public testing::Test {
protected:
    TemporaryFolder _folder;
    const std::string _way = _folder / "way";
    const std::string _root = _way + "/root";

    FSEventsRoots() { fs::create_directories(_root); }

    // Whether the stream still sees that the root's way is cut. It is whole again afterwards.
    bool isCutTold(StreamRecorder& recorder, const std::string& root) {
        recorder.flush();
        recorder.clear();
        fs::rename(_way, _folder / "elsewhere");
        const bool isTold = recorder.waitFor(root, kRootChanged);
        fs::rename(_folder / "elsewhere", _way);
        return isTold && recorder.waitUntil([&] { return recorder.told().size() > 1; });
    }
};

}  // namespace

TEST_F(FSEventsRoots, LinkThatComesToTheSameFolderByAnotherWayIsFollowed) {
    fs::create_directory_symlink(_way, _folder / "first");
    fs::create_directory_symlink(_way, _folder / "second");
    fs::create_directory_symlink(_folder / "first", _folder / "link");
    const std::string root = _folder / "link/root";
    StreamRecorder recorder({root});
    fs::create_directory_symlink(_folder / "second", _folder / "new link");
    fs::rename(_folder / "new link", _folder / "link");
    recorder.flush();
    ASSERT_EQ(recorder.text(), "");
    fs::remove(_folder / "second");
    EXPECT_TRUE(recorder.waitFor(root, kRootChanged));
}

TEST_F(FSEventsRoots, FolderThatIsMadeAnewAroundARootIsGuarded) {
    StreamRecorder recorder({_root});
    for (int round = 0; round < 50; ++round) {
        fs::rename(_root, _folder / "kept");
        fs::remove(_way);
        fs::create_directory(_way);
        fs::rename(_folder / "kept", _root);
        ASSERT_TRUE(isCutTold(recorder, _root)) << "round " << round;
    }
}

TEST_F(FSEventsRoots, RootRenamedWhileItsStreamStartsIsNeitherLostNorUnguarded) {
    for (int round = 0; round < 200; ++round) {
        std::atomic<bool> isOver = false;
        std::thread mover([&] {
            while (!isOver) {
                fs::rename(_way, _folder / "aside");
                fs::rename(_folder / "aside", _way);
            }
        });
        StreamRecorder recorder({_root});
        isOver = true;
        mover.join();
        ASSERT_TRUE(isCutTold(recorder, _root)) << "round " << round;
    }
}

TEST_F(FSEventsRoots, RootThatComesToBeWhileItsStreamStartsIsSeen) {
    const std::string root = _folder / "new/and/deep/root";
    for (int round = 0; round < 100; ++round) {
        std::thread maker([&] { fs::create_directories(root); });
        StreamRecorder recorder({root});
        maker.join();
        recorder.flush();
        recorder.clear();
        fs::rename(_folder / "new/and/deep", _folder / "new/and/gone");
        ASSERT_TRUE(recorder.waitFor(root, kRootChanged)) << "round " << round;
        fs::remove_all(_folder / "new");
    }
}
