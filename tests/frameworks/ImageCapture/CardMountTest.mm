// SPDX-License-Identifier: MIT
// Cards on disk images that come and go. Needs root: mounts in a space of its own.
#include "ImageCaptureCalls.h"
#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/Picture.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <sys/stat.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using Told = std::vector<std::string>;

class Pool {
public:
    ~Pool() { [_pool release]; }

private:
    NSAutoreleasePool* _pool = [[NSAutoreleasePool alloc] init];
};

/// A card with one picture, with what else is written to it, unless it is without pictures.
class Card {
public:
    Card(const std::string& name, const std::string& imageFolder, bool hasPictures = true)
        : _name(name) {
        _made = fs::path(imageFolder) / ("made" + name);
        MountedImage image(_made.string(), imageFolder);
        if (hasPictures) {
            fs::create_directories(_made / "DCIM/100TEST");
            writeFile((_made / "DCIM/100TEST/IMG_1.JPG").string(), picture("", 5000));
        }
        image.unmount();
        _image = image.image();
    }
    void insert() {
        fs::create_directories("/Volumes/" + _name);
        _inserted = std::make_unique<Inserted>("/Volumes/" + _name, _image);
    }
    enum class Way { ByForce, Politely };
    /// Politely: false when somebody still uses it.
    bool eject(Way way = Way::ByForce) {
        const bool isDone =
            way == Way::ByForce || std::system(("umount '/Volumes/" + _name + "'").c_str()) == 0;
        if (way == Way::Politely && isDone)
            _inserted->forget();
        _inserted.reset();
        return isDone;
    }
    std::string path(const std::string& below) const { return "/Volumes/" + _name + "/" + below; }

private:
    class Inserted : public Mounted {
    public:
        Inserted(const std::string& point, const std::string& image) : Mounted(point) {
            const std::string command = "mount -o loop '" + image + "' '" + point + "'";
            if (std::system(command.c_str()) != 0)
                throw std::runtime_error(command + " fails");
        }
        /// Somebody else has unmounted it.
        void forget() { _isMounted = false; }
    };

    std::string _name;
    fs::path _made;
    std::string _image;
    std::unique_ptr<Inserted> _inserted;
};

Told told;

void note(CFStringRef type, CFDictionaryRef dictionary) {
    NSString* name = reinterpret_cast<NSString*>(const_cast<__CFString*>(type));
    NSDictionary* facts = reinterpret_cast<NSDictionary*>(const_cast<__CFDictionary*>(dictionary));
    NSNumber* device = [facts objectForKey:@"ICANotificationDeviceICAObjectKey"];
    const bool isAdded = [name isEqualToString:@"ICANotificationTypeDeviceAdded"];
    told.push_back((isAdded ? "+" : "-") + std::to_string([device intValue]));
    CFRunLoopStop(CFRunLoopGetMain());
}

void listen() {
    NSArray* types = [NSArray arrayWithObjects:@"ICANotificationTypeDeviceAdded",
                                               @"ICANotificationTypeDeviceRemoved", nil];
    ICARegisterForEventNotificationPB block = {};
    block.eventsOfInterest = reinterpret_cast<CFArrayRef>(types);
    block.notificationProc = note;
    ASSERT_EQ(ICARegisterForEventNotification(&block, nullptr), 0);
}

/// The registration is for ever: one for all tests.
class Cards : public testing::Test {
protected:
    static void SetUpTestSuite() {
        const Pool pool;
        ICAGetDeviceListPB list = {};
        ICAGetDeviceList(&list, nullptr);
        listen();
    }

    Cards() { told.clear(); }

    /// Of the card, when it is inserted; it has two seconds to answer, which a busy machine may not
    /// give it.
    static ICAObject inserted() {
        return askUntil([] { return capture::deviceNamed("Card"); },
                        [](ICAObject device) { return device != 0; });
    }
    const Told& toldAfter(std::size_t count) {
        const CFAbsoluteTime limit = CFAbsoluteTimeGetCurrent() + kPatienceSeconds;
        while (told.size() < count && CFAbsoluteTimeGetCurrent() < limit)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, limit - CFAbsoluteTimeGetCurrent(), false);
        return told;
    }

    Pool pool;
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    Card card{"Card", folder.path().string()};
    fs::path target = folder.path() / "target";

    void SetUp() override { fs::create_directory(target); }
};

TEST_F(Cards, AreDevicesWhileTheyAreMounted) {
    EXPECT_EQ(capture::deviceNamed("Card"), 0u);
    card.insert();
    const ICAObject device = inserted();
    ASSERT_NE(device, 0u);
    EXPECT_EQ(capture::deviceNamed("Card"), device);
    NSDictionary* facts = capture::properties(device);
    EXPECT_TRUE([[facts objectForKey:@"ICADeviceTypeKey"] isEqual:@"ICADeviceTypeCardReader"]);
    EXPECT_EQ([[facts objectForKey:@"ICANumberOfDownloadableObjectsKey"] intValue], 1);
    card.eject();
    EXPECT_EQ(capture::deviceNamed("Card"), 0u);
    ICAError error = 0;
    EXPECT_EQ(capture::properties(device, &error), nil);
    EXPECT_EQ(error, kICAInvalidObjectErr);
    toldAfter(0);
}

TEST_F(Cards, AreToldWhenTheyComeAndWhenTheyGo) {
    card.insert();
    toldAfter(1);
    const std::string number = std::to_string(inserted());
    card.eject();
    EXPECT_EQ(toldAfter(2), (Told{"+" + number, "-" + number}));
}

TEST_F(Cards, OneThatWasListedBeforeItWasToldIsToldAllTheSame) {
    card.insert();
    const std::string number = std::to_string(inserted());
    EXPECT_EQ(toldAfter(1), Told{"+" + number});
    card.eject();
    capture::devices();
    EXPECT_EQ(toldAfter(2).back(), "-" + number);
}

TEST_F(Cards, SameCardInsertedAgainIsAnotherDevice) {
    card.insert();
    const ICAObject first = inserted();
    card.eject();
    card.insert();
    EXPECT_NE(inserted(), first);
    card.eject();
    capture::devices();
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0, false);
}

TEST_F(Cards, VolumesWithoutPicturesAreNone) {
    Card disk("Disk", folder.path().string(), false);
    disk.insert();
    EXPECT_EQ(capture::deviceNamed("Disk"), 0u);
}

TEST_F(Cards, FilesAreDescribed) {
    card.insert();
    writeFile(card.path("DCIM/100TEST/../../x"), "not below DCIM");
    NSArray* data = [capture::properties(inserted()) objectForKey:@"data"];
    ASSERT_EQ([data count], 1u);
    NSDictionary* file = [data objectAtIndex:0];
    EXPECT_TRUE([[file objectForKey:@"ifil"] isEqual:@"IMG_1.JPG"]);
    EXPECT_EQ([[file objectForKey:@"isiz"] intValue], 5000);
    EXPECT_EQ([[file objectForKey:@"9003"] length], 19u);
    const ICAObject number = [[file objectForKey:@"icao"] unsignedIntValue];
    EXPECT_TRUE([[capture::properties(number) objectForKey:@"ifil"] isEqual:@"IMG_1.JPG"]);
    card.eject();
}

TEST_F(Cards, FilesAreDownloadedOnceAndNeverReplaced) {
    card.insert();
    const ICAObject file = capture::files(inserted())["IMG_1.JPG"];
    EXPECT_EQ(capture::download(file, target), 0);
    EXPECT_TRUE(readFile(target / "IMG_1.JPG") == picture("", 5000));
    writeFile(target / "IMG_1.JPG", "mine");
    EXPECT_EQ(capture::download(file, target), -48);
    EXPECT_EQ(readFile(target / "IMG_1.JPG"), "mine");
    EXPECT_EQ(capture::download(file, folder / "none"), dirNFErr);
}

TEST_F(Cards, FilesOfACardThatHasGoneAreNoLongerThere) {
    card.insert();
    const ICAObject file = capture::files(inserted())["IMG_1.JPG"];
    card.eject();
    EXPECT_EQ(capture::download(file, target), kICACommunicationErr);
    capture::devices();
    EXPECT_EQ(capture::download(file, target), kICAInvalidObjectErr);
    EXPECT_TRUE(fs::is_empty(target));
}

TEST_F(Cards, ReadingDoesNotKeepACardFromBeingUnmounted) {
    card.insert();
    const ICAObject file = capture::files(inserted())["IMG_1.JPG"];
    EXPECT_EQ(capture::read(file, 0, 100).size(), 100u);
    EXPECT_TRUE(card.eject(Card::Way::Politely));
    EXPECT_EQ(capture::deviceNamed("Card"), 0u);
}

TEST_F(Cards, FullDiskIsToldAndNothingIsLeft) {
    card.insert();
    const ICAObject file = capture::files(inserted())["IMG_1.JPG"];
    MountedMemory full(folder / "full");
    ASSERT_EQ(std::system(("mount -o remount,size=8k '" + full.point() + "'").c_str()), 0);
    writeFile(full.point() + "/filler", std::string(4096, 'x'));
    EXPECT_EQ(capture::download(file, full.point()), dskFulErr);
    EXPECT_EQ(fs::exists(full.point() + "/IMG_1.JPG"), false);
}

}  // namespace

}  // namespace tav::test
