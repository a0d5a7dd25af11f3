// SPDX-License-Identifier: MIT
// Imports that are killed, and cards that are pulled out, at random moments. Needs root: the card
// is a disk image.
#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/Picture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/ImportSession.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <stdexcept>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using namespace ula;

constexpr int kKills = 200 / ULA_ROUNDS_DIVISOR;
/// When none of those fell among the pictures.
constexpr int kMostKills = kKills + 200;
constexpr std::size_t kPictures = 80;
constexpr std::size_t kSize = 20'000;

struct Progress {
    std::atomic<int> imported{0};
    std::atomic<bool> isDone{false};
};

/// As the card has it, by where it is to arrive: of two folders the same names.
std::map<std::string, std::string> fill(const std::string& card) {
    std::map<std::string, std::string> expected;
    for (unsigned i = 0; i < kPictures; ++i) {
        const std::string number = std::to_string(i / 2);
        const std::string path = card + "/DCIM/10" + std::to_string(i % 2) + "TEST";
        fs::create_directories(path);
        const std::string bytes = picture("2009:03:15 10:20:30", kSize, i);
        writeFile(path + "/IMG_" + number + ".JPG", bytes);
        expected["IMG_" + number + (i % 2 == 0 ? ".JPG" : "-2.JPG")] = bytes;
    }
    return expected;
}

std::string cardId() {
    for (const ImportDevice& device : ImportSession::devices())
        if (device.isCard)
            return device.id;
    return {};
}

void importAll(const std::string& target, Progress& progress) {
    ImportSession session(cardId());
    const auto files = session.import(session.list(), target, {}, [&](const ImportProgress& told) {
        progress.imported = static_cast<int>(told.files);
    });
    progress.isDone = files.size() == kPictures;
    for (const ImportedFile& file : files)
        if (file.result == ImportResult::Failed)
            progress.isDone = false;
}

/// The card once more.
class Inserted : public Mounted {
public:
    explicit Inserted(const std::string& image) : Mounted("/Volumes/Card") {
        if (std::system(("mount -o loop '" + image + "' /Volumes/Card").c_str()) != 0)
            throw std::runtime_error("the card cannot be mounted again");
    }
};

class KilledImports : public testing::Test {
protected:
    KilledImports() { fs::create_directory(target); }

    /// As long as a whole import takes at most.
    void wait() {
        const long ns = std::uniform_int_distribution<long>(0, spanNs)(random);
        const timespec delay{ns / 1'000'000'000, ns % 1'000'000'000};
        nanosleep(&delay, nullptr);
    }
    /// The shortest of some: in one of them the machine may halt.
    void measure() {
        for (int i = 0; i < 3; ++i) {
            const auto begin = std::chrono::steady_clock::now();
            Shared<Progress> progress;
            ASSERT_EQ(ChildProcess([&] { importAll(target, *progress); }).wait(), 0);
            const std::chrono::nanoseconds span = std::chrono::steady_clock::now() - begin;
            spanNs = std::min<long>(spanNs, span.count());
            fs::remove_all(target);
            fs::create_directories(target);
        }
    }
    /// What is there is whole, each picture once, and nothing else.
    void inspect(const std::map<std::string, std::string>& expected, bool isComplete) {
        std::size_t found = 0;
        for (const auto& entry : fs::directory_iterator(target)) {
            const std::string name = entry.path().filename().string();
            const auto picture = expected.find(name);
            ASSERT_NE(picture, expected.end()) << name << " is none of the pictures";
            ASSERT_TRUE(readFile(entry.path().string()) == picture->second) << name;
            ++found;
        }
        if (isComplete) {
            ASSERT_EQ(found, expected.size());
        }
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    std::string target = folder / "target";
    std::minstd_rand random{20'261'121};
    long spanNs = std::numeric_limits<long>::max();
};

TEST_F(KilledImports, EveryPictureIsThereWholeExactlyOnce) {
    const MountedImage card("/Volumes/Card", folder.path());
    const auto expected = fill(card.point());
    measure();
    int kills = 0, inside = 0, complete = 0;
    const auto goesOn = [&] { return kills < kKills || (inside == 0 && kills < kMostKills); };
    while (goesOn()) {
        fs::create_directories(target);
        Shared<Progress> progress;
        while (!progress->isDone && goesOn()) {
            ChildProcess child([&] { importAll(target, *progress); });
            wait();
            child.kill();
            ++kills;
            inside += progress->imported > 0 && !progress->isDone ? 1 : 0;
            inspect(expected, progress->isDone);
            if (HasFatalFailure())
                return;
            if (kills % 8 == 0)
                ASSERT_EQ(ChildProcess([&] { importAll(target, *progress); }).wait(), 0);
        }
        inspect(expected, progress->isDone);
        complete += progress->isDone ? 1 : 0;
        fs::remove_all(target);
    }
    std::printf("%d kills, %d among the pictures, %d imports completed\n", kills, inside, complete);
    EXPECT_GT(inside, 0);
    EXPECT_GT(complete, 0);
}

TEST_F(KilledImports, CardThatIsPulledOutAtAnyMomentLosesNothing) {
    std::unique_ptr<Mounted> card = std::make_unique<MountedImage>("/Volumes/Card", folder.path());
    const std::string image = static_cast<MountedImage&>(*card).image();
    const auto expected = fill(card->point());
    measure();
    int inside = 0, complete = 0, round = 0;
    for (; round < kKills || (inside == 0 && round < kMostKills); ++round) {
        Shared<Progress> progress;
        {
            ChildProcess child([&] { importAll(target, *progress); });
            wait();
            card.reset();
            ASSERT_EQ(child.wait(), 0);
        }
        inside += progress->imported > 0 && !progress->isDone ? 1 : 0;
        card = std::make_unique<Inserted>(image);
        if (round % 10 == 9)
            ASSERT_EQ(ChildProcess([&] { importAll(target, *progress); }).wait(), 0);
        inspect(expected, progress->isDone);
        if (HasFatalFailure())
            return;
        complete += progress->isDone ? 1 : 0;
        if (progress->isDone)
            fs::remove_all(target);
        fs::create_directories(target);
    }
    std::printf("%d pulls, %d among the pictures, %d imports completed\n", round, inside, complete);
    EXPECT_GT(inside, 0);
    EXPECT_GE(complete, kKills / 10);
}

}  // namespace

}  // namespace tav::test
