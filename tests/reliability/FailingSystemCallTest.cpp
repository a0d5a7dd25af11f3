// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"
#include "tests/reliability/support/SaveProblems.h"
#include "tests/reliability/support/SystemCalls.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <tuple>

namespace tav::test {

namespace {

using ula::FastString;
using ula::SettingsXML;

constexpr int kOldMark = 1;
constexpr int kNewMark = 2;

/// Calls that may fail without the save failing, and why that is right.
struct Harmless {
    std::string_view call;
    std::string_view path;  ///< part of what the call names
    const char* reason;
};
constexpr std::array<Harmless, 3> kHarmless = {{
    {"close", "", "the bytes are synced before; a close that fails has closed all the same"},
    {"access", "/proc/self/fd", "without it, the new file gets a hidden name from the start"},
    {"unlinkat", ".ula-", "the save is done, or has yet to make the name; the next one removes it"},
}};

/// Calls that a signal can cut short, and which are then to be made again.
constexpr std::array<std::string_view, 5> kInterruptible = {"open", "openat", "write", "fsync",
                                                            "readlink"};

bool isHarmless(const SystemCall& call) {
    return std::ranges::any_of(kHarmless, [&](const Harmless& harmless) {
        return call.name == harmless.call && call.path.find(harmless.path) != std::string::npos;
    });
}

bool isInterruptible(const SystemCall& call) {
    return std::ranges::find(kInterruptible, call.name) != kInterruptible.end();
}

/// Parameters: whether the file system has unnamed files, whether there is an old file.
class FailingSystemCall : public testing::TestWithParam<std::tuple<bool, bool>> {
protected:
    void SetUp() override {
        allowUnnamedFiles(std::get<0>(GetParam()));
        _oldText = textWithMark(kOldMark);
        _before.folder = _folder.path().string();
        _before.path = _folder / "settings.xml";
        if (std::get<1>(GetParam()))
            _before.bytes = _oldText;
    }
    void TearDown() override { allowUnnamedFiles(true); }

    void restore() {
        unlink(_before.path.c_str());
        if (!_before.bytes)
            return;
        writeFile(_before.path, *_before.bytes);
        // Owner and mode differ from a new file's: there is something to copy.
        ASSERT_EQ(chmod(_before.path.c_str(), 0640), 0);
    }

    /// The calls of a save under `plan`; what the save did wrong is added to `problems`.
    std::vector<SystemCall> save(const FaultPlan& plan, std::string& problems);
    std::string judge(const SystemCall& failed, int errorNumber, bool gaveTrue);
    int failEachCall(int errorNumber);

    TemporaryFolder _folder{"/dev/shm"};
    Before _before;
    std::string _oldText;
    bool _gaveTrue = false;
};

std::vector<SystemCall> FailingSystemCall::save(const FaultPlan& plan, std::string& problems) {
    restore();
    SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
    fillWithMark(settings, kNewMark);
    std::vector<SystemCall> calls;
    const auto write = [&] {
        calls = runWithFaults(plan, [&] { _gaveTrue = settings.write(); });
        return _gaveTrue;
    };
    const bool fails = plan.failAt != 0;
    // Which of the two it has to be is known only when the call's name is.
    const std::string asFailure =
        fails ? problemsOfFailingSave(_before, settings, write) : std::string();
    if (!fails)
        problems += problemsOfSave(_before, settings, kNewMark, write);
    else if (!_gaveTrue)
        problems += asFailure;
    return calls;
}

std::string FailingSystemCall::judge(const SystemCall& failed, int errorNumber, bool gaveTrue) {
    if (!gaveTrue) {
        if (isHarmless(failed) || (errorNumber == EINTR && isInterruptible(failed)))
            return "write() gave false; ";
        return {};
    }
    std::string problems;
    if (markOfFile(_before.path) != kNewMark)
        problems += "write() gave true, the file is not the new one; ";
    if (!isHarmless(failed) && !(errorNumber == EINTR && isInterruptible(failed)))
        problems += "write() gave true; ";
    // What could not be removed now is removed by the next save.
    SettingsXML next("Reliability", "Tests", FastString(_before.path), false);
    next.write();
    return problems + othersIn(_before);
}

/// Returns how many calls a save makes.
int FailingSystemCall::failEachCall(int errorNumber) {
    for (int number = 1;; ++number) {
        FaultPlan plan;
        plan.failAt = number;
        plan.errorNumber = errorNumber;
        std::string problems;
        const std::vector<SystemCall> calls = save(plan, problems);
        if (static_cast<int>(calls.size()) < number)
            return number - 1;
        const SystemCall& failed = calls[static_cast<std::size_t>(number - 1)];
        problems += judge(failed, errorNumber, _gaveTrue);
        EXPECT_EQ(problems, "") << "call " << number << ", " << failed.name << "(" << failed.path
                                << "), failed with " << std::strerror(errorNumber);
    }
}

TEST_P(FailingSystemCall, FailsTheSaveAndLeavesEverythingAsItWas) {
    for (const int errorNumber : {ENOSPC, EIO, EACCES, EDQUOT})
        EXPECT_GT(failEachCall(errorNumber), 8);
}

TEST_P(FailingSystemCall, IsMadeAgainWhenASignalCutItShort) {
    EXPECT_GT(failEachCall(EINTR), 8);
}

TEST_P(FailingSystemCall, MayWriteFewerBytesThanAsked) {
    for (const std::size_t longest : {1U, 7U, 4096U}) {
        FaultPlan plan;
        plan.longestWrite = longest;
        std::string problems;
        const std::vector<SystemCall> calls = save(plan, problems);
        EXPECT_EQ(problems + othersIn(_before), "") << longest;
        EXPECT_GE(std::ranges::count(calls, "write", &SystemCall::name),
                  static_cast<std::ptrdiff_t>(_oldText.size() / longest / 2));
    }
}

/// The other tests would pass if the calls went past them.
TEST_P(FailingSystemCall, IsSeenByTheTest) {
    std::string problems;
    const std::vector<SystemCall> calls = save(FaultPlan(), problems);
    EXPECT_EQ(problems, "");
    std::set<std::string> names;
    for (const SystemCall& call : calls)
        names.insert(call.name);
    for (const char* name : {"open", "openat", "write", "fsync", "renameat", "close"})
        EXPECT_TRUE(names.contains(name)) << name;
    if (std::get<0>(GetParam()))
        EXPECT_TRUE(names.contains("linkat"));
    if (std::get<1>(GetParam()))
        EXPECT_TRUE(names.contains("fchmod"));
    std::printf("%zu calls\n", calls.size());
}

INSTANTIATE_TEST_SUITE_P(Ways, FailingSystemCall,
                         testing::Combine(testing::Bool(), testing::Bool()), [](const auto& given) {
                             return std::string(std::get<0>(given.param) ? "Unnamed" : "Named") +
                                    (std::get<1>(given.param) ? "OverOldFile" : "NewFile");
                         });

}  // namespace

}  // namespace tav::test
