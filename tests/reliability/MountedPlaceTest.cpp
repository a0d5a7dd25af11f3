// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"
#include "tests/reliability/support/SaveProblems.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace tav::test {

namespace {

using ula::FastString;
using ula::SettingsXML;

std::string errorText(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
}

/// Gives this process mounts of its own, as root of its own when it is nobody's. Fails: the
/// reason.
std::string leaveMounts() {
    const int alone = geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER;
    if (unshare(alone) != 0)
        return errorText("no mounts of one's own");
    if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
        return errorText("mounts cannot be made private");
    return {};
}

std::string mountMemory(const std::string& folder, const char* options) {
    const std::string reason = leaveMounts();
    if (!reason.empty())
        return reason;
    return mount("tmpfs", folder.c_str(), "tmpfs", 0, options) == 0
               ? std::string()
               : errorText("no file system in memory");
}

/// Writes until there is no room left.
void fill(const std::string& path) {
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string bytes(4096, 'x');
    while (write(file, bytes.data(), bytes.size()) > 0)
        continue;
    close(file);
}

class MountedPlace : public testing::Test {
protected:
    void SetUp() override {
        _before.folder = _folder.path().string();
        _before.path = _folder / "settings.xml";
        _before.bytes = textWithMark(1);
    }

    std::string problemsOfSave() {
        SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
        fillWithMark(settings, 2);
        return problemsOfFailingSave(_before, settings);
    }

    TemporaryFolder _folder;
    Before _before;
};

TEST_F(MountedPlace, FullDisk) {
    EXPECT_EQ(runInChild([&] {
                  std::string problems = mountMemory(_before.folder, "size=256k");
                  if (!problems.empty())
                      return problems;
                  writeFile(_before.path, *_before.bytes);
                  const std::string hog = _folder / "hog";
                  fill(hog);
                  problems = problemsOfSave();
                  // Only the hog may be there besides.
                  if (problems == "hog is left in the folder; ")
                      problems.clear();
                  unlink(hog.c_str());
                  SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
                  fillWithMark(settings, 3);
                  return problems + test::problemsOfSave(_before, settings, 3,
                                                         [&] { return settings.write(); });
              }),
              "");
}

TEST_F(MountedPlace, DiskWithoutRoomForAnotherFile) {
    EXPECT_EQ(runInChild([&] {
                  // The root folder, the old file, and no more.
                  const std::string problems = mountMemory(_before.folder, "nr_inodes=2");
                  if (!problems.empty())
                      return problems;
                  writeFile(_before.path, *_before.bytes);
                  return problemsOfSave();
              }),
              "");
}

TEST_F(MountedPlace, ReadOnlyDisk) {
    EXPECT_EQ(runInChild([&] {
                  const std::string problems = mountMemory(_before.folder, "size=1m");
                  if (!problems.empty())
                      return problems;
                  writeFile(_before.path, *_before.bytes);
                  if (mount("none", _before.folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY,
                            nullptr) != 0)
                      return errorText("cannot be made read-only");
                  return problemsOfSave();
              }),
              "");
}

}  // namespace

}  // namespace tav::test

int main(int argumentCount, char** arguments) {
    testing::InitGoogleTest(&argumentCount, arguments);
    const std::string reason = tav::test::runInChild([] { return tav::test::leaveMounts(); });
    if (!reason.empty()) {
        std::printf("these tests mount and need root: %s\n", reason.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
