// SPDX-License-Identifier: MIT
// The desktop example's parts that draw nothing, under what disks and cards do to them. Mounts:
// needs root.
#include "examples/lighttable/FolderTree.h"
#include "examples/lighttable/ImportTask.h"
#include "examples/lighttable/PictureDecoder.h"
#include "examples/lighttable/PictureFolder.h"
#include "examples/lighttable/Preferences.h"
#include "examples/lighttable/ThumbnailLoader.h"
#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/Picture.h"
#include "tests/support/TemporaryFolder.h"

#include <CoreFoundation/CoreFoundation.h>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>
#include <optional>
#include <set>
#include <sys/mount.h>
#include <ula/MainThreadCaller.h>
#include <ula/ScopedARPool.h>
#include <ula/SpecialFolders.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using namespace lighttable;
using namespace tav::ula;

constexpr std::size_t kFileSize = 8'000;

/// A main thread that serves its run loop.
class LightTableParts : public testing::Test {
protected:
    LightTableParts() { MainThreadCaller::instance(); }

    template <class Condition>
    static bool waitUntil(Condition condition) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!condition() && std::chrono::steady_clock::now() < end)
            CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.05, true);
        return condition();
    }
    static bool waitFor(const PictureFolder& pictures, FolderState state, std::size_t count) {
        return waitUntil([&] {
            return pictures.content().state == state && pictures.content().pictures.size() == count;
        });
    }
    std::string makePictures(const std::string& name, int count) const {
        fs::create_directories(folder / name);
        for (int i = 0; i < count; ++i)
            writeFile(folder / (name + "/IMG_" + std::to_string(1000 + i) + ".jpg"),
                      picture({}, kFileSize, static_cast<unsigned>(i)));
        return folder / name;
    }

    const ScopedARPool pool;
    TemporaryFolder folder;
};

TEST_F(LightTableParts, AFolderIsFollowedWhileItIsShown) {
    const std::string shown = makePictures("shown", 2);
    PictureFolder pictures([] {});
    pictures.show(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 2));
    writeFile(shown + "/IMG_2.jpg", picture());
    EXPECT_TRUE(waitFor(pictures, FolderState::Listed, 3));
    EXPECT_EQ(pictures.content().pictures[0].name, "IMG_2.jpg");
    fs::remove(shown + "/IMG_1000.jpg");
    EXPECT_TRUE(waitFor(pictures, FolderState::Listed, 2));
}

TEST_F(LightTableParts, AFolderWithFoldersInItIsFollowedToo) {
    const std::string shown = makePictures("shown", 2);
    fs::create_directories(shown + "/below");
    PictureFolder pictures([] {});
    pictures.show(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 2));
    writeFile(shown + "/IMG_2.jpg", picture());
    EXPECT_TRUE(waitFor(pictures, FolderState::Listed, 3));
}

TEST_F(LightTableParts, AFolderThatGoesIsMissingAndComesBack) {
    const std::string shown = makePictures("shown", 3);
    PictureFolder pictures([] {});
    pictures.show(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 3));
    fs::remove_all(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Missing, 0));
    makePictures("shown", 1);
    EXPECT_TRUE(waitFor(pictures, FolderState::Listed, 1));
    fs::rename(shown, folder / "renamed");
    EXPECT_TRUE(waitFor(pictures, FolderState::Missing, 0));
}

TEST_F(LightTableParts, ADiskIsUnmountedUnderAShownFolder) {
    std::optional<MountedMemory> disk(std::in_place, folder / "disk");
    const std::string shown = makePictures("disk/shown", 3);
    PictureFolder pictures([] {});
    pictures.show(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 3));
    // Nothing of the light table keeps the disk busy.
    ASSERT_EQ(umount(disk->point().c_str()), 0);
    disk->forget();
    EXPECT_TRUE(waitFor(pictures, FolderState::Missing, 0));
}

TEST_F(LightTableParts, TenThousandPicturesAreListedInFindersOrder) {
    const std::string shown = makePictures("shown", 1);
    for (int i = 1; i < 10'000; ++i)
        fs::create_hard_link(shown + "/IMG_1000.jpg",
                             shown + "/IMG_" + std::to_string(1000 + i) + ".jpg");
    PictureFolder pictures([] {});
    pictures.show(shown);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 10'000));
    EXPECT_EQ(pictures.content().pictures[8'999].name, "IMG_9999.jpg");
    EXPECT_EQ(pictures.content().pictures[9'000].name, "IMG_10000.jpg");
}

TEST_F(LightTableParts, OfManyFoldersTheLastOneIsShown) {
    const std::string many = makePictures("many", 200), last = makePictures("last", 1);
    std::vector<std::string> listed;
    PictureFolder pictures([&] {
        if (pictures.content().state == FolderState::Listed)
            listed.push_back(pictures.content().folder);
    });
    for (int i = 0; i < 50; ++i)
        pictures.show(many);
    pictures.show(last);
    ASSERT_TRUE(waitFor(pictures, FolderState::Listed, 1));
    EXPECT_THAT(listed, testing::Each(last));
}

bool hasRow(const FolderTree& tree, const std::string& path) {
    return std::any_of(tree.rows().begin(), tree.rows().end(),
                       [&](const FolderNode* row) { return row->path == path; });
}

TEST_F(LightTableParts, TheBrowserUnfoldsToAFolderAndFollowsIt) {
    const std::string home = SpecialFolders::home().toStdString();
    const TemporaryFolder below(home);
    fs::create_directories(below / "one/two/three");
    FolderTree tree([] {});
    tree.reveal(below / "one/two");
    ASSERT_TRUE(waitUntil([&] { return hasRow(tree, below / "one/two"); }));
    EXPECT_FALSE(hasRow(tree, below / "one/two/three"));
    fs::create_directory(below / "one/new");
    EXPECT_TRUE(waitUntil([&] { return hasRow(tree, below / "one/new"); }));
    fs::remove_all(below / "one");
    EXPECT_TRUE(waitUntil([&] { return !hasRow(tree, below / "one"); }));
    tree.reveal("/nowhere/at/all");
    EXPECT_TRUE(waitUntil([&] { return tree.isLoaded(); }));
}

TEST_F(LightTableParts, DamagedPicturesAreEmpty) {
    const std::string whole = picture("2009:03:15 10:20:30");
    ASSERT_FALSE(
        (writeFile(folder / "a.jpg", whole), decodePicture(folder / "a.jpg", 80).isEmpty()));
    for (std::size_t length = 0; length < whole.size(); length += 7) {
        writeFile(folder / "cut.jpg", whole.substr(0, length));
        decodePicture(folder / "cut.jpg", 80);
    }
    for (const char* bytes :
         {"", "\xff\xd8\xff\xe0 and then nothing", "GIF89a", "II*\0", "\x89PNG\r\n\x1a\n"}) {
        writeFile(folder / "damaged.jpg", bytes);
        EXPECT_TRUE(decodePicture(folder / "damaged.jpg", 80).isEmpty()) << bytes;
    }
    EXPECT_TRUE(decodePicture(folder / "missing.jpg", 80).isEmpty());
    EXPECT_TRUE(decodePicture(folder.path().string(), 80).isEmpty());
}

TEST_F(LightTableParts, APictureThatClaimsTooManyPixelsIsNotDecoded) {
    using namespace std::string_literals;
    // The head of a PNG of 60,000 x 60,000 pixels.
    writeFile(
        folder / "bomb.png",
        "\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\xea\x60\0\0\xea\x60\x08\x02\0\0\0\x2d\x2a\xc5\xf1"s);
    EXPECT_TRUE(decodePicture(folder / "bomb.png", 80).isEmpty());
}

/// Two pixels beside each other, red and blue, and a camera that was held upright.
std::string turnedTiff() {
    using namespace std::string_literals;
    const auto number = [](int value) { return std::string{static_cast<char>(value), '\0'}; };
    const auto entry = [&](int tag, int value) {
        return std::string{static_cast<char>(tag), '\x01'} + "\x03\0\x01\0\0\0"s + number(value) +
               "\0\0"s;
    };
    return "II*\0\x0e\0\0\0\xff\0\0\0\0\xff"s + number(9) + entry(0, 2) + entry(1, 1) +
           entry(2, 8) + entry(3, 1) + entry(6, 2) + entry(17, 8) + entry(18, 6) + entry(21, 3) +
           entry(23, 6) + "\0\0\0\0"s;
}

TEST_F(LightTableParts, PicturesStandUpright) {
    writeFile(folder / "turned.tif", turnedTiff());
    const Thumbnail thumbnail = decodePicture(folder / "turned.tif", 80);
    EXPECT_EQ(thumbnail.width, 1);
    EXPECT_EQ(thumbnail.height, 2);
    EXPECT_THAT(thumbnail.pixels, testing::ElementsAre(255, 0, 0, 0, 0, 255));
}

TEST_F(LightTableParts, ThumbnailsArriveForWhatIsWantedLast) {
    const std::string shown = makePictures("shown", 300);
    std::vector<PictureFile> wanted;
    for (int i = 0; i < 300; ++i)
        wanted.push_back(
            {shown + "/IMG_" + std::to_string(1000 + i) + ".jpg", "IMG", kFileSize, i});
    std::set<std::string> loaded;
    std::optional<ThumbnailLoader> loader;
    // Where the machine halts in between, all are loaded before they are no longer wanted.
    for (int attempt = 0; attempt == 0 || (attempt < 10 && loaded.size() >= 100); ++attempt) {
        loaded.clear();
        loader.emplace([&](const std::string& path) { loaded.insert(path); });
        loader->want(wanted);
        loader->want({wanted.back()});
        ASSERT_TRUE(waitUntil([&] { return loader->isIdle(); }));
    }
    EXPECT_TRUE(loaded.contains(wanted.back().path));
    EXPECT_LT(loaded.size(), 100u);
    ASSERT_NE(loader->find(wanted.back()), nullptr);
    EXPECT_EQ(loader->find(wanted.back())->width, 8);
    wanted.back().modified = 4711;
    EXPECT_EQ(loader->find(wanted.back()), nullptr) << "another picture by now";
}

TEST_F(LightTableParts, SettingsThatAreDamagedOrGoneAreBegunAnew) {
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    const fs::path file = folder / "data/lighttable/settings.xml";
    for (const char* bytes : {"", "<settings><gro", "<html><body/></html>", "\xff\xfe\0"}) {
        fs::create_directories(file.parent_path());
        writeFile(file, bytes);
        {
            Preferences preferences;
            EXPECT_EQ(preferences.thumbnailSize(), 160);
            preferences.setThumbnailSize(200);
            // Whoever tidies up takes the folder along.
            fs::remove_all(folder / "data");
            preferences.setFolder("/somewhere");
        }
        Preferences again;
        EXPECT_EQ(again.thumbnailSize(), 200);
        EXPECT_EQ(again.folder(), "/somewhere");
        again.setThumbnailSize(160);
    }
    unsetenv("XDG_DATA_HOME");
}

/// A memory card with pictures, and an import of it into the folder "in".
class LightTableImport : public LightTableParts {
protected:
    LightTableImport() { insertCard(); }

    void insertCard() {
        _card.emplace(folder / "Card", "/dev/mmcblk0p1");
        fs::create_directories(folder / "Card/DCIM");
        makePictures("Card/DCIM/100TEST", 60);
    }

    static ImportDevice listedCard() {
        for (const ImportDevice& found : ImportSession::devices())
            if (found.name == "Card")
                return found;
        return {};
    }
    /// A card has two seconds to answer, which a busy machine may not give it.
    static ImportDevice device() {
        const ImportDevice found =
            askUntil(listedCard, [](const ImportDevice& device) { return device.name == "Card"; });
        EXPECT_EQ(found.name, "Card");
        return found;
    }
    /// Those that are there must be whole.
    std::size_t countWhole() const {
        std::size_t count = 0;
        for (const auto& entry : fs::directory_iterator(folder / "in"))
            count += fs::file_size(entry.path()) == kFileSize;
        return count;
    }

    /// Pulls the card out at the fifth picture.
    ImportOutcome importAndPull() {
        std::optional<ImportOutcome> outcome;
        bool isPulled = false;
        ImportTask::Events events;
        events.progress = [&](const ImportState& state) {
            if (isPulled || state.files < 5)
                return;
            isPulled = true;
            _card->unmount();
        };
        events.finished = [&](const ImportOutcome& end) { outcome = end; };
        ImportTask task(device(), folder / "in", {}, events);
        EXPECT_TRUE(waitUntil([&] { return outcome.has_value(); }));
        EXPECT_TRUE(isPulled);
        return outcome.value_or(ImportOutcome());
    }

    std::optional<MountedMemory> _card;
};

TEST_F(LightTableImport, BringsEverythingOver) {
    std::optional<ImportOutcome> outcome;
    ImportTask task(device(), folder / "in", {},
                    {[](const ImportState&) {}, [&](const ImportOutcome& end) { outcome = end; }});
    ASSERT_TRUE(waitUntil([&] { return outcome.has_value(); }));
    EXPECT_EQ(outcome->imported, 60u);
    EXPECT_EQ(outcome->error, "");
    EXPECT_EQ(countWhole(), 60u);
}

TEST_F(LightTableImport, ACardThatIsPulledEndsWithAnErrorAndWholeFiles) {
    ImportOutcome outcome = importAndPull();
    // On a busy machine all may be there before the card is pulled.
    for (int attempt = 1; attempt < 10 && outcome.imported == 60; ++attempt) {
        fs::remove_all(folder / "in");
        insertCard();
        outcome = importAndPull();
    }
    EXPECT_LT(outcome.imported, 60u);
    EXPECT_NE(outcome.error, "");
    EXPECT_EQ(countWhole(), outcome.imported);
}

TEST_F(LightTableImport, ATaskThatGoesTakesItsCallsAlong) {
    int calls = 0;
    {
        ImportTask task(
            device(), folder / "in", {},
            {[&](const ImportState&) { ++calls; }, [&](const ImportOutcome&) { ++calls; }});
        ASSERT_TRUE(waitUntil([&] { return calls > 0; }));
    }
    const int before = calls;
    CFRunLoopRunInMode(kCFRunLoopDefaultMode, 0.2, false);
    EXPECT_EQ(calls, before);
}

}  // namespace

}  // namespace tav::test
