// SPDX-License-Identifier: MIT
#pragma once

#include "StreamRecorder.h"
#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gtest/gtest.h>
#include <string>

namespace tav::test {

constexpr FSEventStreamCreateFlags kItems =
    kFSEventStreamCreateFlagFileEvents | kFSEventStreamCreateFlagWatchRoot;
constexpr FSEventStreamEventFlags kChanged = kFSEventStreamEventFlagNone;
constexpr FSEventStreamEventFlags kMustScan = kFSEventStreamEventFlagMustScanSubDirs;
constexpr FSEventStreamEventFlags kRootChanged = kFSEventStreamEventFlagRootChanged;
constexpr FSEventStreamEventFlags kFileCreated =
    kFSEventStreamEventFlagItemCreated | kFSEventStreamEventFlagItemIsFile;

/// A folder for a stream's root.
class FSEventsFixture : public testing::Test {
protected:
    TemporaryFolder _folder;
    std::string _root = _folder / "root";

    FSEventsFixture() { std::filesystem::create_directory(_root); }
    std::string at(const std::string& name) const { return _root + "/" + name; }
};

}  // namespace tav::test
