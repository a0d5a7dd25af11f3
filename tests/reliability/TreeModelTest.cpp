// SPDX-License-Identifier: MIT
// A model of a tree that is fed by a monitor's events alone is compared with the disk, after random
// operations that run while the events are being collected. Changes a limit of the kernel for some
// of the rounds: needs root.
#include "tests/support/LoweredLimit.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TreeRecorder.h"

#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using tav::test::readFile;
using tav::test::TemporaryFolder;
using tav::test::TreeRecorder;
using tav::test::writeFile;
using tav::ula::TreeEvent;
using tav::ula::TreeEventType;

namespace {

namespace fs = std::filesystem;

constexpr int kScripts = 1000 / ULA_ROUNDS_DIVISOR;
constexpr char kQueueLimit[] = "/proc/sys/fs/inotify/max_queued_events";

// Paths and whether they are folders.
using Items = std::map<std::string, bool>;

void readDisk(const std::string& top, Items& items) {
    std::error_code error;
    fs::recursive_directory_iterator walk(top, error);
    for (; !error && walk != fs::recursive_directory_iterator(); walk.increment(error))
        items[walk->path().string()] = fs::is_directory(walk->symlink_status());
}

class Model {
public:
    explicit Model(const std::string& root) { readDisk(root, _items); }

    const Items& items() const { return _items; }

    void apply(const TreeEvent& event) {
        switch (event.type) {
        case TreeEventType::Created:
            if (_items.contains(event.path) && _items[event.path] != event.isFolder)
                erase(event.path);
            _items[event.path] = event.isFolder;
            break;
        case TreeEventType::Changed:
            break;
        case TreeEventType::Removed:
            erase(event.path);
            break;
        case TreeEventType::Moved:
            move(event);
            break;
        case TreeEventType::RescanNeeded:
            rescan(event.path);
            break;
        }
    }

private:
    Items cut(const std::string& top) {
        Items below;
        for (auto item = _items.lower_bound(top); item != _items.end();) {
            if (!item->first.starts_with(top))
                break;
            const bool isInside =
                item->first.size() == top.size() || item->first[top.size()] == '/';
            if (isInside)
                below.insert(*item);
            item = isInside ? _items.erase(item) : std::next(item);
        }
        return below;
    }

    void erase(const std::string& top) { cut(top); }

    void move(const TreeEvent& event) {
        erase(event.newPath);
        for (const auto& [path, isFolder] : cut(event.path))
            _items[event.newPath + path.substr(event.path.size())] = isFolder;
        _items[event.newPath] = event.isFolder;
    }

    void rescan(const std::string& top) {
        const bool wasItem = _items.contains(top);
        erase(top);
        struct stat item {};
        if (lstat(top.c_str(), &item) != 0)
            return;
        if (wasItem || !isRoot(top))
            _items[top] = S_ISDIR(item.st_mode);
        readDisk(top, _items);
    }

    // The root itself is no item of the model.
    static bool isRoot(const std::string& path) { return path.ends_with("/root"); }

    Items _items;
};

// Random operations within a root and a folder outside of it.
class Script {
public:
    Script(unsigned seed, std::string root, std::string outside)
        : _random(seed), _root(std::move(root)), _outside(std::move(outside)) {}

    void step() {
        switch (number(12)) {
        case 0:
        case 1:
        case 2:
            fs::create_directories(somePath(), _ignored);
            break;
        case 3:
        case 4:
            write(somePath());
            break;
        case 5:
            fs::remove_all(somePath(), _ignored);
            break;
        case 6:
        case 7:
        case 8:
            fs::rename(somePath(), somePath(), _ignored);
            break;
        case 9:
            renameat2(AT_FDCWD, somePath().c_str(), AT_FDCWD, somePath().c_str(), RENAME_EXCHANGE);
            break;
        case 10:
            fs::rename(somePath(), _outside + "/" + someName(), _ignored);
            break;
        default:
            fs::rename(_outside + "/" + someName(), somePath(), _ignored);
        }
    }

    int number(int limit) { return std::uniform_int_distribution(0, limit - 1)(_random); }

private:
    std::string someName() { return std::string(1, static_cast<char>('a' + number(4))); }

    std::string somePath() {
        std::string path = _root;
        for (int depth = 1 + number(4); depth > 0; --depth)
            path += "/" + someName();
        return path;
    }

    static void write(const std::string& path) {
        const int file = open(path.c_str(), O_CREAT | O_WRONLY | O_CLOEXEC, 0600);
        if (file >= 0)
            close(file);
    }

    std::mt19937 _random;
    std::string _root;
    std::string _outside;
    std::error_code _ignored;
};

std::string text(const Items& items) {
    std::string text;
    for (const auto& [path, isFolder] : items)
        text += path + (isFolder ? "/\n" : "\n");
    return text;
}

class TreeModelTest : public testing::Test {
protected:
    void runScript(unsigned seed) {
        // In memory: a thousand scripts would keep a disk busy for a minute.
        TemporaryFolder folder("/dev/shm");
        const std::string root = folder / "root";
        fs::create_directory(root);
        fs::create_directory(folder / "outside");
        Script script(seed, root, folder / "outside");
        for (int step = script.number(30); step > 0; --step)
            script.step();
        TreeRecorder recorder(root);
        Model model(root);
        recorder.onEvent = [&] { model.apply(recorder.told().back()); };
        for (int step = 60; step > 0; --step) {
            script.step();
            if (script.number(10) == 0)
                recorder.flush();
        }
        // What it is told of rescans may make it look again.
        for (std::size_t told = SIZE_MAX; told != recorder.told().size();) {
            told = recorder.told().size();
            recorder.flush();
        }
        Items disk;
        readDisk(root, disk);
        ASSERT_EQ(text(model.items()), text(disk)) << "seed " << seed << "\n" << recorder.text();
    }
};

}  // namespace

TEST_F(TreeModelTest, EventsGiveWhatIsOnTheDisk) {
    for (unsigned seed = 0; seed < kScripts && !HasFatalFailure(); ++seed)
        runScript(seed);
}

TEST_F(TreeModelTest, EventsGiveWhatIsOnTheDiskWhenTheQueueOverflows) {
    const tav::test::LoweredLimit limit(kQueueLimit, "5");
    testing::internal::CaptureStderr();
    for (unsigned seed = 0; seed < kScripts / 10 && !HasFatalFailure(); ++seed)
        runScript(seed);
    EXPECT_NE(testing::internal::GetCapturedStderr().find("changes were lost"), std::string::npos);
}
