// SPDX-License-Identifier: MIT
#include "ImageCapture/Devices.h"

#include "FakeCamera.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

using namespace imagecapture;
using tav::test::TemporaryFolder;
using testing::ElementsAre;

std::vector<std::unique_ptr<DeviceSource>> sourcesOf(std::vector<FoundDevice>& found) {
    std::vector<std::unique_ptr<DeviceSource>> sources;
    sources.push_back(std::make_unique<FakeSource>(found));
    return sources;
}

class KnownDevices : public testing::Test {
protected:
    void plugIn(const std::string& identity) {
        found.push_back({identity, "Name of " + identity, Kind::CameraDevice,
                         [this] { return std::make_unique<FakeCamera>(facts); }});
    }
    ObjectNumber onlyDevice() {
        const auto devices = registry.scan();
        EXPECT_EQ(devices.size(), 1u);
        return devices.empty() ? 0 : devices[0].number;
    }
    std::vector<ObjectFacts> filesOf(ObjectNumber device) {
        std::vector<ObjectFacts> files;
        EXPECT_EQ(registry.allFiles(device, files), 0);
        return files;
    }
    std::vector<std::string> namesOf(ObjectNumber device) {
        std::vector<std::string> names;
        for (const ObjectFacts& file : filesOf(device))
            names.push_back(file.name);
        return names;
    }

    FakeFolders facts{{{"", {{"A", true, 0, 0}, {"b.jpg", false, 5, 9}}},
                       {"A", {{"b.jpg", false, 5, 0}, {"c.jpg", false, 5, 0}}}},
                      {},
                      0};
    std::vector<FoundDevice> found;
    Devices registry{sourcesOf(found)};
    TemporaryFolder folder;
};

TEST_F(KnownDevices, NumbersStayWhileDevicesAreConnected) {
    plugIn("one");
    const ObjectNumber one = onlyDevice();
    const auto before = filesOf(one);
    plugIn("two");
    const auto both = registry.scan();
    ASSERT_EQ(both.size(), 2u);
    EXPECT_EQ(both[0].number, one);
    const auto after = filesOf(one);
    ASSERT_EQ(after.size(), before.size());
    for (size_t i = 0; i < after.size(); ++i)
        EXPECT_EQ(after[i].number, before[i].number);
}

TEST_F(KnownDevices, NumbersAreNotGivenAgain) {
    plugIn("one");
    const ObjectNumber first = onlyDevice();
    const ObjectNumber file = filesOf(first)[0].number;
    found.clear();
    EXPECT_TRUE(registry.scan().empty());
    plugIn("one");
    const ObjectNumber second = onlyDevice();
    EXPECT_GT(second, file);
    std::span<char> bytes;
    EXPECT_EQ(registry.read(file, 0, bytes), kICAInvalidObjectErr);
    EXPECT_FALSE(registry.object(file));
    EXPECT_FALSE(registry.device(first));
}

TEST_F(KnownDevices, FilesOfAFolderComeBeforeThoseOfTheFoldersInIt) {
    plugIn("one");
    EXPECT_THAT(namesOf(onlyDevice()), ElementsAre("b.jpg", "b.jpg", "c.jpg"));
}

TEST_F(KnownDevices, FolderThatMayNotBeReadKeepsNobodyFromTheOthers) {
    plugIn("one");
    facts.errors["A"] = afpAccessDenied;
    facts.folders["A"].clear();
    EXPECT_THAT(namesOf(onlyDevice()), ElementsAre("b.jpg"));
}

TEST_F(KnownDevices, DeviceThatDoesNotAnswerSaysWhy) {
    plugIn("one");
    facts.errors["A"] = kICACommunicationErr;
    const ObjectNumber device = onlyDevice();
    std::vector<ObjectFacts> files;
    EXPECT_EQ(registry.allFiles(device, files), kICACommunicationErr);
    EXPECT_EQ(registry.device(device)->problem, "it is broken");
    facts.errors.clear();
    EXPECT_EQ(registry.allFiles(device, files), 0);
    EXPECT_EQ(registry.device(device)->problem, "");
}

TEST_F(KnownDevices, FoldersInThemselvesComeToAnEnd) {
    plugIn("one");
    for (std::string path = "A"; path.size() < 100; path += "/A")
        facts.folders[path] = {{"A", true, 0, 0}};
    EXPECT_THAT(namesOf(onlyDevice()), ElementsAre("b.jpg"));
}

TEST_F(KnownDevices, NamesThatLeadElsewhereAreLeftOut) {
    facts.folders = {{"",
                      {{"..", true, 0, 0},
                       {"a/../../x", false, 1, 0},
                       {"", false, 1, 0},
                       {".hidden", false, 1, 0}}}};
    plugIn("one");
    EXPECT_THAT(namesOf(onlyDevice()), ElementsAre("_hidden"));
}

TEST_F(KnownDevices, ChildrenAreCountedAndFoundByIndex) {
    plugIn("one");
    const ObjectNumber device = onlyDevice();
    std::vector<ObjectFacts> children;
    ASSERT_EQ(registry.children(device, children), 0);
    ASSERT_EQ(children.size(), 2u);
    ObjectFacts child;
    ASSERT_EQ(registry.nthListed(device, 2, child), 0);
    EXPECT_EQ(child.number, children[1].number);
    EXPECT_EQ(registry.nthListed(device, 0, child), kICAIndexOutOfRangeErr);
    EXPECT_EQ(registry.nthListed(device, 3, child), kICAIndexOutOfRangeErr);
    EXPECT_EQ(registry.children(children[1].number, children), kICAInvalidObjectErr);
}

TEST_F(KnownDevices, DownloadKeepsTheDateWhereAsked) {
    plugIn("one");
    const auto files = filesOf(onlyDevice());
    std::string path;
    ASSERT_EQ(registry.download(files[0].number, folder.path().string(), true, path), 0);
    EXPECT_EQ(path, folder / "b.jpg");
    struct stat info {};
    ASSERT_EQ(stat(path.c_str(), &info), 0);
    EXPECT_EQ(info.st_mtime, 9);
}

TEST_F(KnownDevices, DownloadNeverReplaces) {
    plugIn("one");
    const auto files = filesOf(onlyDevice());
    tav::test::writeFile(folder / "b.jpg", "mine");
    std::string path;
    EXPECT_EQ(registry.download(files[0].number, folder.path().string(), false, path), dupFNErr);
    EXPECT_EQ(tav::test::readFile(folder / "b.jpg"), "mine");
}

TEST_F(KnownDevices, NothingIsLeftOfADownloadThatFails) {
    plugIn("one");
    const auto files = filesOf(onlyDevice());
    facts.copyError = kICACommunicationErr;
    std::string path;
    EXPECT_EQ(registry.download(files[0].number, folder.path().string(), false, path),
              kICACommunicationErr);
    EXPECT_TRUE(folder.names().empty());
    EXPECT_EQ(registry.download(files[0].number, folder / "none", false, path), dirNFErr);
}

}  // namespace
