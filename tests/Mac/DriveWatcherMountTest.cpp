// SPDX-License-Identifier: MIT
// Volumes that really come and go. Needs root: mounts in a space of its own.
#include "ula/DriveWatcher.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreServices/MountSerials.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using ula::Drive;
using ula::DriveWatcher;
using Told = std::vector<std::string>;

class WatchedDrives : public testing::Test {
protected:
    WatchedDrives() { note(*watcher); }
    ~WatchedDrives() override {
        for (const auto& entry : fs::directory_iterator("/Volumes"))
            if (entry.path().filename() != "Linux")
                fs::remove(entry.path());
    }

    void note(DriveWatcher& one) {
        one.driveMounted.connect([this](const Drive& drive) { note("+", drive); });
        one.driveUnmounted.connect([this](const Drive& drive) { note("-", drive); });
    }
    void note(const std::string& sign, const Drive& drive) {
        told.push_back(sign + drive.properties().fullPath());
        records.push_back(drive);
        CFRunLoopStop(CFRunLoopGetMain());
    }
    /// Runs the loop until that much was told.
    const Told& toldAfter(std::size_t count) {
        const CFAbsoluteTime limit = CFAbsoluteTimeGetCurrent() + kPatienceSeconds;
        while (told.size() < count && CFAbsoluteTimeGetCurrent() < limit)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, limit - CFAbsoluteTimeGetCurrent(), false);
        return told;
    }
    /// A volume that comes is told after all that was to be told before it.
    const Told& toldSoFar() {
        const MountedMemory last("/Volumes/last");
        while (told.empty() || told.back() != "+/Volumes/last")
            if (const std::size_t count = told.size(); toldAfter(count + 1).size() == count)
                break;
        told.pop_back();
        return told;
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    std::unique_ptr<DriveWatcher> watcher{DriveWatcher::create()};
    Told told;
    std::vector<Drive> records;
};

TEST_F(WatchedDrives, ImageIsToldWithItsRecordWhenItComesAndWhenItGoes) {
    MountedImage image("/Volumes/Image", folder.path());
    toldAfter(1);
    image.unmount();
    EXPECT_EQ(toldAfter(2), (Told{"+/Volumes/Image", "-/Volumes/Image"}));
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].type(), ula::Virtual);
    EXPECT_EQ(records[0].volumeURL(), "file:///Volumes/Image/");
    EXPECT_EQ(records[0], records[1]);
    EXPECT_NE(records[1].properties().icon(), nullptr);
}

TEST_F(WatchedDrives, TwoVolumesMountedBeforeAnythingIsHandledAreToldInTheirOrder) {
    const MountedMemory second("/Volumes/B");
    const MountedMemory first("/Volumes/A");
    EXPECT_EQ(toldAfter(2), (Told{"+/Volumes/B", "+/Volumes/A"}));
}

TEST_F(WatchedDrives, OneThatGoesWhileAnotherComesIsToldAndSoIsTheOther) {
    MountedMemory old("/Volumes/Old");
    toldAfter(1);
    told.clear();
    old.unmount();
    const MountedMemory young("/Volumes/Young");
    EXPECT_EQ(toldAfter(2), (Told{"-/Volumes/Old", "+/Volumes/Young"}));
}

TEST_F(WatchedDrives, AnotherVolumeInThePlaceOfOneIsToldAsBoth) {
    MountedMemory memory("/Volumes/Place");
    toldAfter(1);
    told.clear();
    memory.unmount();
    const MountedImage image("/Volumes/Place", folder.path());
    EXPECT_EQ(toldAfter(2), (Told{"-/Volumes/Place", "+/Volumes/Place"}));
    EXPECT_EQ(records[1].volumeURL(), "file:///Volumes/Place/");
}

// Older kernels give the second one all the numbers of the first.
TEST_F(WatchedDrives, VolumeOfTheSameKindInThePlaceOfOneIsToldAsBothWhereItCanBeTold) {
    MountedMemory first("/Volumes/Place");
    toldAfter(1);
    told.clear();
    first.unmount();
    const MountedMemory second("/Volumes/Place");
    EXPECT_EQ(toldSoFar(), coreservices::mountSerials().empty()
                               ? Told()
                               : (Told{"-/Volumes/Place", "+/Volumes/Place"}));
}

TEST_F(WatchedDrives, VolumeThatCameAndWentInBetweenIsNotTold) {
    { const MountedMemory brief("/Volumes/Brief"); }
    EXPECT_EQ(toldSoFar(), Told());
}

TEST_F(WatchedDrives, VolumeIsToldWhenItGetsItsNameInVolumes) {
    const MountedImage image(folder / "disk", folder.path());
    EXPECT_EQ(toldSoFar(), Told());
    toldAfter(1);  // the last one goes
    told.clear();
    fs::create_symlink(image.point(), "/Volumes/Disk");
    EXPECT_EQ(toldAfter(1), Told{"+/Volumes/Disk"});
    fs::rename("/Volumes/Disk", "/Volumes/Renamed");
    EXPECT_EQ(toldAfter(3), (Told{"+/Volumes/Disk", "-/Volumes/Disk", "+/Volumes/Renamed"}));
}

TEST_F(WatchedDrives, ShareWithoutAServerIsTold) {
    {
        const DeadShare share("/Volumes/Share");
        EXPECT_EQ(toldAfter(1), Told{"+/Volumes/Share"});
    }
    EXPECT_EQ(toldAfter(2).back(), "-/Volumes/Share");
    EXPECT_EQ(records.back().type(), ula::Network);
}

TEST_F(WatchedDrives, FiftyThatComeAtOnceAndGoAtOnceAreAllTold) {
    std::vector<std::unique_ptr<MountedMemory>> volumes;
    for (int i = 0; i < 50; ++i)
        volumes.push_back(std::make_unique<MountedMemory>("/Volumes/" + std::to_string(i)));
    toldAfter(50);
    volumes.clear();
    ASSERT_EQ(toldAfter(100).size(), 100u);
    for (std::size_t i = 0; i < 50; ++i) {
        EXPECT_EQ(told[i], "+/Volumes/" + std::to_string(i));
        EXPECT_EQ(told[50 + i], "-/Volumes/" + std::to_string(i));
    }
}

TEST_F(WatchedDrives, ChangeDuringASlotIsToldAfterItToEveryWatcher) {
    const std::unique_ptr<DriveWatcher> second(DriveWatcher::create());
    note(*second);
    std::unique_ptr<MountedMemory> other;
    watcher->driveMounted.connect([&](const Drive&) {
        if (!other)
            other = std::make_unique<MountedMemory>("/Volumes/Other");
        // As an alert would: the loop runs on.
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
    });
    const MountedMemory memory("/Volumes/Memory");
    EXPECT_EQ(toldAfter(4),
              (Told{"+/Volumes/Memory", "+/Volumes/Memory", "+/Volumes/Other", "+/Volumes/Other"}));
}

// As a stick that is pulled out: the list no longer has it, and its record is kept all the same.
TEST_F(WatchedDrives, VolumeThatGoesDuringASlotIsStillTold) {
    auto image = std::make_unique<MountedImage>("/Volumes/Image", folder.path());
    toldAfter(1);
    told.clear();
    const std::unique_ptr<DriveWatcher> second(DriveWatcher::create());
    note(*second);
    const boost::signals2::scoped_connection ending =
        watcher->driveMounted.connect([&](const Drive&) { image.reset(); });
    const MountedMemory memory("/Volumes/Memory");
    EXPECT_EQ(toldAfter(4),
              (Told{"+/Volumes/Memory", "+/Volumes/Memory", "-/Volumes/Image", "-/Volumes/Image"}));
}

TEST_F(WatchedDrives, AfterAnExceptionOfASlotTheRestIsTold) {
    const boost::signals2::scoped_connection failing = watcher->driveMounted.connect(
        [&](const Drive&) { throw std::runtime_error("of the slot"); });
    const MountedMemory one("/Volumes/One");
    const MountedMemory two("/Volumes/Two");
    int exceptions = 0;
    while (told.empty() || told.back() != "+/Volumes/Two") {
        try {
            ASSERT_LT(told.size(), toldAfter(told.size() + 1).size());
        } catch (const std::runtime_error&) {
            ++exceptions;
        }
    }
    EXPECT_EQ(told.front(), "+/Volumes/One");
    EXPECT_GE(exceptions, 1);
}

TEST_F(WatchedDrives, ChildProcessTakesNothingFromItsParent) {
    const MountedMemory memory("/Volumes/Memory");
    const std::string inChild = runInChild([] {
        CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
        return std::to_string(Drive::drives().size());
    });
    EXPECT_GE(std::stoi(inChild), 2);
    EXPECT_EQ(toldAfter(1), Told{"+/Volumes/Memory"});
}

TEST_F(WatchedDrives, ChildProcessMayWatchForItself) {
    const std::string inChild = runInChild([this] {
        const std::unique_ptr<DriveWatcher> own(DriveWatcher::create());
        watcher.reset();
        told.clear();
        note(*own);
        const MountedMemory memory("/Volumes/Memory");
        return toldAfter(1).empty() ? std::string("nothing") : told.front();
    });
    EXPECT_EQ(inChild, "+/Volumes/Memory");
    EXPECT_EQ(toldSoFar(), Told());
}

TEST_F(WatchedDrives, SignalsComeOnTheMainThreadWhereverTheMountIsMade) {
    std::thread::id where;
    watcher->driveMounted.connect([&](const Drive&) { where = std::this_thread::get_id(); });
    std::unique_ptr<MountedMemory> memory;
    std::thread([&] { memory = std::make_unique<MountedMemory>("/Volumes/Memory"); }).join();
    EXPECT_EQ(toldAfter(1), Told{"+/Volumes/Memory"});
    EXPECT_EQ(where, std::this_thread::get_id());
}

}  // namespace

}  // namespace tav::test
