// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"
#include "tests/reliability/support/SystemCalls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include "ula/SettingsException.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string_view>
#include <sys/prctl.h>
#include <thread>
#include <unistd.h>

namespace tav::test {

namespace {

using ula::FastString;
using ula::SettingsXML;

/// How far the process that saves has come.
struct Progress {
    std::atomic<int> begun{0};
    std::atomic<int> done{0};
    std::atomic<int> failed{0};
};

using Saver = std::function<bool(SettingsXML& settings, const std::string& path, int mark)>;

bool saveAsTheLibraryDoes(SettingsXML& settings, const std::string&, int) {
    return settings.write();
}

bool writeAll(int file, std::string_view text) {
    return write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

/// What must not be done to a user's file: empties it and writes the new text over it, on a disk
/// so slow that writing takes as long as building the text. Thus many kills fall into the writing.
bool saveInPlace(SettingsXML&, const std::string& path, int mark) {
    const auto begin = std::chrono::steady_clock::now();
    const std::string text = textWithMark(mark, path + ".text");
    const auto buildTime = std::chrono::steady_clock::now() - begin;

    const std::string_view half = std::string_view(text).substr(0, text.size() / 2);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    const bool halfDone = writeAll(file, half);
    std::this_thread::sleep_for(buildTime);
    const bool done = halfDone && writeAll(file, std::string_view(text).substr(half.size()));
    return close(file) == 0 && done;
}

/// Loads the file and saves it again and again until it is killed. Says that it has begun by
/// closing its end of the pipe.
[[noreturn]] void saveForEver(const std::string& path, const Saver& save, Progress& progress,
                              int ready) {
    SettingsXML settings("Reliability", "Tests", FastString(path), false);
    for (int mark = progress.done + 1;; ++mark) {
        fillWithMark(settings, mark);
        progress.begun = mark;
        if (ready >= 0)
            close(std::exchange(ready, -1));
        if (!save(settings, path, mark))
            ++progress.failed;
        progress.done = mark;
    }
}

void waitUntilClosed(int pipeEnd) {
    char none = 0;
    while (read(pipeEnd, &none, 1) != 0)
        continue;
    close(pipeEnd);
}

struct Outcome {
    int rounds = 0;
    int insideSave = 0;  ///< kills between the begin and the end of a save
    int savesDone = 0;
    int broken = 0;       ///< unreadable, mixed, older than the last finished save, or not begun
    int leftovers = 0;    ///< folders in which the next save left something
    int leftByKills = 0;  ///< hidden files found after a kill
    int failed = 0;       ///< saves that gave false
};

class KilledSaves {
public:
    KilledSaves(const std::string& parent, Saver save)
        : _folder(parent), _path(_folder / "settings.xml"), _save(std::move(save)) {
        // Sleeps end when they should, not up to 50 µs later.
        prctl(PR_SET_TIMERSLACK, 1);
        SettingsXML settings("Reliability", "Tests", FastString(_path), false);
        fillWithMark(settings, 0);
        _save(settings, _path, 0);
        // The shortest of some: in one of them the machine may halt.
        for (int i = 0; i < 5; ++i) {
            const auto begin = std::chrono::steady_clock::now();
            fillWithMark(settings, 0);
            _save(settings, _path, 0);
            const std::chrono::nanoseconds span = std::chrono::steady_clock::now() - begin;
            _spanNs = std::min<long>(_spanNs, span.count());
        }
    }

    /// Kills `rounds` processes, or fewer when `untilBroken` and a file was found broken.
    Outcome run(int rounds, bool untilBroken) {
        while (_outcome.rounds < rounds && !(untilBroken && _outcome.broken > 0))
            killOne();
        _outcome.savesDone = _progress->done;
        _outcome.failed = _progress->failed;
        std::printf("%d kills, %d inside a save, %d saves finished, %d files broken, "
                    "%d hidden files left by kills\n",
                    _outcome.rounds, _outcome.insideSave, _outcome.savesDone, _outcome.broken,
                    _outcome.leftByKills);
        return _outcome;
    }

private:
    void killOne() {
        int ends[2];
        ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
        ChildProcess child([&] {
            close(ends[0]);
            saveForEver(_path, _save, *_progress, ends[1]);
        });
        close(ends[1]);
        waitUntilClosed(ends[0]);
        const long ns = std::uniform_int_distribution<long>(0, _spanNs)(_random);
        const timespec delay{ns / 1'000'000'000, ns % 1'000'000'000};
        nanosleep(&delay, nullptr);
        child.kill();
        inspect();
    }

    void inspect() {
        ++_outcome.rounds;
        const int begun = _progress->begun;
        _outcome.insideSave += begun > _progress->done;
        const std::optional<int> mark = markOfFile(_path);
        if (!mark || *mark < _progress->done || *mark > begun)
            ++_outcome.broken;
        else
            _progress->done = *mark;
        _outcome.leftByKills += static_cast<int>(_folder.names().size()) - 1;
        if (_outcome.rounds % 50 == 0)
            saveOnceMore();
    }

    void saveOnceMore() {
        SettingsXML settings("Reliability", "Tests", FastString(_path), false);
        _outcome.failed += !settings.write();
        _outcome.leftovers += _folder.names() != std::vector<std::string>{"settings.xml"};
    }

    TemporaryFolder _folder;
    std::string _path;
    Saver _save;
    long _spanNs = std::numeric_limits<long>::max();
    Shared<Progress> _progress;
    Outcome _outcome;
    std::mt19937 _random{20};
};

int rounds(int all) {
    return std::max(all / ULA_ROUNDS_DIVISOR, 20);
}

void expectWhole(const Outcome& outcome, int kills) {
    EXPECT_EQ(outcome.rounds, kills);
    EXPECT_EQ(outcome.broken, 0);
    EXPECT_EQ(outcome.failed, 0);
    EXPECT_EQ(outcome.leftovers, 0);
    // Otherwise nothing has been tested.
    EXPECT_GT(outcome.insideSave, kills / 8);
}

}  // namespace

TEST(KilledSave, LeavesTheOldOrTheNewFileWholeInMemory) {
    KilledSaves saves("/dev/shm", saveAsTheLibraryDoes);
    expectWhole(saves.run(rounds(2000), false), rounds(2000));
}

TEST(KilledSave, LeavesTheOldOrTheNewFileWholeOnDisk) {
    KilledSaves saves({}, saveAsTheLibraryDoes);
    expectWhole(saves.run(rounds(1000), false), rounds(1000));
}

TEST(KilledSave, LeavesTheOldOrTheNewFileWholeWithoutUnnamedFiles) {
    allowUnnamedFiles(false);
    KilledSaves saves("/dev/shm", saveAsTheLibraryDoes);
    const Outcome outcome = saves.run(rounds(1000), false);
    allowUnnamedFiles(true);
    expectWhole(outcome, rounds(1000));
}

TEST(KilledSave, CheckFindsAWriterThatRewritesInPlace) {
    KilledSaves saves("/dev/shm", saveInPlace);
    EXPECT_GT(saves.run(1000, true).broken, 0);
}

}  // namespace tav::test
