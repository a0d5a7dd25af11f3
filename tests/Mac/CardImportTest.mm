// SPDX-License-Identifier: MIT
// Cards on disk images, as a program sees them. Needs root: mounts in a space of its own.
#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/Picture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/ImportSession.h"
#include "ula/PTPImporter.h"

#include <CoreFoundation/CoreFoundation.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using namespace ula;
using testing::ElementsAre;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

class CardImport : public testing::Test {
protected:
    CardImport() { fs::create_directory(target()); }

    std::string target(const std::string& name = "") { return folder / ("target/" + name); }
    void fill(const MountedImage& card) {
        unsigned seed = 0;
        for (const char* path : {"100A/IMG_1.JPG", "101B/IMG_1.JPG", "101B/IMG_2.JPG"}) {
            const std::string file = card.point() + "/DCIM/" + path;
            fs::create_directories(fs::path(file).parent_path());
            writeFile(file, picture("2009:03:15 10:20:30", 20'000, ++seed));
        }
    }
    static ImportDevice listedCard() {
        for (const ImportDevice& device : ImportSession::devices())
            if (device.isCard)
                return device;
        return {};
    }
    /// A card has two seconds to answer, which a busy machine may not give it.
    static ImportDevice cardDevice() {
        return askUntil(listedCard, [](const ImportDevice& device) { return device.isCard; });
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

// The importer is one for each process, and keeps its thread.
TEST_F(CardImport, CardIsToldAndItsPicturesArriveInTheFolder) {
    const std::string outcome = runInChild([this] {
        std::string told;
        PTPImporter& importer = *PTPImporter::getInstance();
        importer.deviceAdded.connect([&](const std::string& id, const Texts& files) {
            told += "+" + std::to_string(files.size());
            importer.downloadFiles(id, files, target());
            CFRunLoopStop(CFRunLoopGetMain());
        });
        importer.deviceRemoved.connect([&](const std::string&) {
            told += "-";
            CFRunLoopStop(CFRunLoopGetMain());
        });
        MountedImage card("/Volumes/Card", folder.path());
        fill(card);
        // The folder of pictures came after the mount: for it to be seen the card is inserted anew.
        card.unmount();
        fs::create_directories("/Volumes/Card");
        if (std::system(("mount -o loop " + card.image() + " /Volumes/Card").c_str()) != 0)
            return std::string("no mount");
        const CFAbsoluteTime limit = CFAbsoluteTimeGetCurrent() + kPatienceSeconds;
        const auto runUntil = [&](std::size_t length) {
            while (told.size() < length && CFAbsoluteTimeGetCurrent() < limit)
                CFRunLoopRunInMode(kCFRunLoopDefaultMode, 1, false);
        };
        runUntil(2);
        if (std::system("umount /Volumes/Card") != 0)
            told += " cannot be unmounted";
        runUntil(3);
        return told;
    });
    EXPECT_EQ(outcome, "+3-");
    EXPECT_EQ(readFile(target("IMG_2.JPG")).size(), 20'000u);
    EXPECT_EQ(readFile(target("IMG_1.JPG")).size(), 20'000u);
}

TEST_F(CardImport, SessionListsFoldersAndTellsSameNamesApart) {
    const MountedImage card("/Volumes/Card", folder.path());
    fill(card);
    const ImportDevice device = cardDevice();
    EXPECT_EQ(device.name, "Card");
    ImportSession session(device.id);
    Texts paths;
    for (const ImportObject& object : session.list())
        paths.push_back(object.folder + "/" + object.name);
    EXPECT_THAT(paths, ElementsAre("100A/IMG_1.JPG", "101B/IMG_1.JPG", "101B/IMG_2.JPG"));
    EXPECT_EQ(session.error(), "");
}

TEST_F(CardImport, EachPictureIsThereWholeOnceHoweverOftenItIsDone) {
    const MountedImage card("/Volumes/Card", folder.path());
    fill(card);
    ImportSession session(cardDevice().id);
    const auto objects = session.list();
    for (int round = 0; round < 2; ++round) {
        for (const ImportedFile& file : session.import(objects, target(), {"", true}))
            EXPECT_EQ(file.result, round == 0 ? ImportResult::Imported : ImportResult::AlreadyThere)
                << file.error;
    }
    EXPECT_TRUE(readFile(target("IMG_1.JPG")) == readFile(card.point() + "/DCIM/100A/IMG_1.JPG"));
    EXPECT_TRUE(readFile(target("IMG_1-2.JPG")) == readFile(card.point() + "/DCIM/101B/IMG_1.JPG"));
    EXPECT_EQ(std::distance(fs::directory_iterator(target()), {}), 3);
}

TEST_F(CardImport, PicturesGoToTheFoldersOfTheirDays) {
    const MountedImage card("/Volumes/Card", folder.path());
    fill(card);
    ImportSession session(cardDevice().id);
    session.import(session.list(), target(), {"%Y/%Y-%m-%d", false});
    EXPECT_TRUE(fs::exists(target("2009/2009-03-15/IMG_2.JPG")));
}

TEST_F(CardImport, CardThatIsPulledOutEndsTheImportAndTheNextOneGoesOn) {
    auto card = std::make_unique<MountedImage>("/Volumes/Card", folder.path());
    fill(*card);
    const std::string image = card->image();
    ImportSession session(cardDevice().id);
    const auto objects = session.list();
    const auto files = session.import(objects, target(), {}, [&](const ImportProgress& progress) {
        if (progress.files == 1 && card)
            card.reset();
    });
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(files[0].result, ImportResult::Imported);
    EXPECT_EQ(files[1].result, ImportResult::Failed);
    EXPECT_EQ(files[2].error, files[1].error);
    ASSERT_EQ(std::system(("mount -o loop " + image + " /Volumes/Card").c_str()), 0);
    ImportSession next(cardDevice().id);
    std::vector<ImportResult> results;
    for (const ImportedFile& file : next.import(next.list(), target()))
        results.push_back(file.result);
    EXPECT_THAT(results, ElementsAre(ImportResult::AlreadyThere, ImportResult::Imported,
                                     ImportResult::Imported));
    EXPECT_EQ(std::system("umount /Volumes/Card"), 0);
}

TEST_F(CardImport, DeviceThatIsNoneListsNothingAndSaysWhy) {
    ImportSession session("99");
    EXPECT_THAT(session.list(), IsEmpty());
    EXPECT_EQ(session.error(), "the device is no longer connected");
}

}  // namespace

}  // namespace tav::test
