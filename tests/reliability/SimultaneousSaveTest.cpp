// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"
#include "tests/reliability/support/SaveProblems.h"
#include "tests/reliability/support/SystemCalls.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Patience.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <gtest/gtest.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using ula::FastString;
using ula::SettingsXML;

struct Counts {
    std::atomic<int> failed{0};
    std::atomic<int> read{0};
    std::atomic<int> broken{0};
    std::atomic<int> changes{0};
    std::atomic<bool> done{false};
};

void save(const std::string& path, int saver, int times, Counts& counts) {
    SettingsXML settings("Reliability", "Tests", FastString(path), false);
    const auto saveOnce = [&](int number) {
        fillWithMark(settings, saver * 100000 + number);
        counts.failed += !settings.write();
    };
    // A busy machine may give the reader no time: the counted ones come when it has seen some.
    const auto end = std::chrono::steady_clock::now() + kPatience;
    for (int more = 0; counts.changes <= 10 && std::chrono::steady_clock::now() < end; ++more)
        saveOnce(times + more);
    for (int i = 0; i < times; ++i)
        saveOnce(i);
}

void readUntilDone(const std::string& path, Counts& counts) {
    std::optional<int> last;
    while (!counts.done) {
        const std::optional<int> mark = markOfFile(path);
        ++counts.read;
        counts.broken += !mark;
        counts.changes += mark != last;
        last = mark;
    }
}

/// `savers` processes that save the same file `times` times each, and one that reads it.
void expectEachFileWhole(int savers, int times, const std::string& parent) {
    const TemporaryFolder folder(parent);
    const std::string path = folder / "settings.xml";
    writeFile(path, textWithMark(0));
    Shared<Counts> counts;
    ChildProcess reader([&] { readUntilDone(path, *counts); });
    std::vector<std::unique_ptr<ChildProcess>> processes;
    for (int saver = 1; saver <= savers; ++saver)
        processes.push_back(
            std::make_unique<ChildProcess>([&] { save(path, saver, times, *counts); }));
    for (const auto& process : processes)
        EXPECT_EQ(process->wait(), 0);
    counts->done = true;
    EXPECT_EQ(reader.wait(), 0);

    std::printf("%d savers: %d saves, %d reads, %d versions seen\n", savers, savers * times,
                counts->read.load(), counts->changes.load());
    EXPECT_EQ(counts->failed, 0);
    EXPECT_EQ(counts->broken, 0);
    EXPECT_GT(counts->changes, 10);
    EXPECT_EQ(markOfFile(path).value_or(-1) % 100000, times - 1);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"settings.xml"});
}

int times(int all) {
    return std::max(all / ULA_ROUNDS_DIVISOR, 30);
}

TEST(SimultaneousSave, OfTwoProcessesGivesWholeFilesInMemory) {
    expectEachFileWhole(2, times(3000), "/dev/shm");
}

TEST(SimultaneousSave, OfTwoProcessesGivesWholeFilesOnDisk) {
    expectEachFileWhole(2, times(500), {});
}

TEST(SimultaneousSave, OfEightProcessesGivesWholeFiles) {
    expectEachFileWhole(8, times(800), "/dev/shm");
}

TEST(SimultaneousSave, GivesWholeFilesWithoutUnnamedFiles) {
    allowUnnamedFiles(false);
    expectEachFileWhole(8, times(400), "/dev/shm");
    allowUnnamedFiles(true);
}

/// The places where two savers can meet, one by one: the other saver's steps are taken between
/// two steps of ours.
class MeetingSavers : public testing::Test {
protected:
    using Step = std::function<void()>;

    void SetUp() override { writeFile(_path, textWithMark(0)); }

    /// Saves; the other saver does `step` before our new file is put in place for the first time.
    void saveAgainst(const Step& step) {
        SettingsXML settings("Reliability", "Tests", FastString(_path), false);
        fillWithMark(settings, 1);
        bool done = false;
        FaultPlan plan;
        plan.before = [&](const SystemCall& call) {
            if (call.name != "renameat" || done)
                return;
            done = true;
            _hidden = call.path.substr(0, call.path.find(" -> "));
            step();
        };
        runWithFaults(plan, [&] { _saved = settings.write(); });
        ASSERT_TRUE(done);
    }

    const TemporaryFolder _folder{"/dev/shm"};
    const std::string _path = _folder / "settings.xml";
    std::string _hidden;  ///< the name from which our file is put in place
    bool _saved = false;
};

TEST_F(MeetingSavers, OneSavesWholeInBetween) {
    saveAgainst([&] {
        SettingsXML other("Reliability", "Tests", FastString(_path), false);
        fillWithMark(other, 2);
        EXPECT_TRUE(other.write());
        EXPECT_TRUE(fs::exists(_folder / _hidden));  // it is no leftover
    });
    EXPECT_TRUE(_saved);
    EXPECT_EQ(markOfFile(_path), 1);
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"settings.xml"});
}

TEST_F(MeetingSavers, OneClearsUpAfterAnotherThatDied) {
    saveAgainst([&] { writeFile(_folder / ".settings.xml.ula-new-1-1", "half"); });
    EXPECT_TRUE(_saved);
    EXPECT_EQ(_folder.names(), std::vector<std::string>{"settings.xml"});
}

}  // namespace

}  // namespace tav::test
