// SPDX-License-Identifier: MIT
// The steps of a move by themselves: paths, commands, and the way with an administrator's rights,
// with every answer that the system may give.
#include "ula/src/Mac/MoveCommands.h"
#include "ula/src/Mac/MovePaths.h"
#include "ula/src/Mac/MovePlan.h"
#include "ula/src/Mac/PrivilegedCopy.h"

#import <AppKit/AppKit.h>

#include "tests/Mac/ReplacedLookup.h"
#include "tests/support/TemporaryFolder.h"

#include <Security/Security.h>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

extern "C" typedef void NSLog_printf_handler(NSString* message);
extern "C" NSLog_printf_handler* _NSLog_printf_handler;

namespace {

using namespace tav::test;
using namespace tav::ula;
namespace fs = std::filesystem;
using testing::ElementsAre;

double version = 1038;
std::vector<std::string> logged;

/// What the system answers, and what it was asked for.
struct System {
    OSStatus made = errAuthorizationSuccess;
    OSStatus rights = errAuthorizationSuccess;
    OSStatus executed = errAuthorizationSuccess;
    std::vector<std::string> ends = {"0", "0"};  // exit codes, "signal" or "gone"
    std::vector<std::string> calls;
};

System platform;

OSStatus execute(AuthorizationRef, const char* program, AuthorizationFlags flags,
                 char* const* words, FILE** pipe) {
    std::string call = program;
    for (; *words != nullptr; ++words)
        call += std::string(" ") + *words;
    platform.calls.push_back(call + (flags == 0 && pipe == nullptr ? "" : " with options"));
    if (platform.executed != errAuthorizationSuccess)
        return platform.executed;
    const std::string end = platform.ends.front();
    platform.ends.erase(platform.ends.begin());
    const pid_t child = end == "gone" ? -1 : fork();
    if (child == 0) {
        if (end == "signal")
            raise(SIGKILL);
        _exit(std::atoi(end.c_str()));
    }
    return errAuthorizationSuccess;
}

}  // namespace

// In place of the frameworks': the names of a program come before those of its libraries.
__attribute__((visibility("default"))) double ULAAppKitVersionNumber() {
    return version;
}

extern "C" {

OSStatus AuthorizationCreate(const AuthorizationRights* rights,
                             const AuthorizationEnvironment* environment, AuthorizationFlags flags,
                             AuthorizationRef* authorization) {
    const bool isPlain = rights == nullptr && environment == nullptr && flags == 0;
    platform.calls.push_back(isPlain ? "create" : "create with options");
    *authorization = reinterpret_cast<AuthorizationRef>(&platform);
    return platform.made;
}

OSStatus AuthorizationFree(AuthorizationRef, AuthorizationFlags) {
    platform.calls.push_back("free");
    return errAuthorizationSuccess;
}

OSStatus AuthorizationCopyRights(AuthorizationRef, const AuthorizationRights* rights,
                                 const AuthorizationEnvironment*, AuthorizationFlags flags,
                                 AuthorizationRights**) {
    const AuthorizationItem& item = rights->items[0];
    EXPECT_EQ(rights->count, 1u);
    EXPECT_EQ(item.value, nullptr);
    EXPECT_EQ(item.valueLength + item.flags, 0u);
    platform.calls.push_back(std::string(item.name) + " " + std::to_string(flags));
    return platform.rights;
}
}

namespace {

class Steps : public testing::Test {
protected:
    Steps() : _pool([[NSAutoreleasePool alloc] init]) {
        version = 1038;
        platform = {};
        privilegedExecution = reinterpret_cast<void*>(execute);
        logged.clear();
        _NSLog_printf_handler = [](NSString* message) {
            const std::string text = [message UTF8String];
            const size_t begin = text.find("] ") + 2;
            logged.push_back(text.substr(begin, text.find_last_not_of('\n') + 1 - begin));
        };
    }
    ~Steps() override {
        _NSLog_printf_handler = nullptr;
        [_pool release];
    }

    static NSString* text(const std::string& bytes) {
        return [NSString stringWithUTF8String:bytes.c_str()];
    }
    static std::string resolved(const std::string& path) {
        NSString* const answer = resolvedPath(text(path));
        return answer == nil ? "nothing" : [answer UTF8String];
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};

private:
    NSAutoreleasePool* _pool;
};

TEST_F(Steps, APathWithoutLinksIsItself) {
    fs::create_directories(folder / "a/b");
    writeFile(folder / "a/b/file", "");
    EXPECT_EQ(resolved(folder / "a/b/"), folder / "a/b");
    EXPECT_EQ(resolved(folder / "a/./b/../b/file"), folder / "a/b/file");
    EXPECT_EQ(resolved("/"), "/");
}

TEST_F(Steps, RelativeAndMissingPathsAreNothing) {
    EXPECT_EQ(resolved("a/b"), "nothing");
    EXPECT_EQ(resolved(""), "nothing");
    EXPECT_EQ(resolved(folder / "missing"), "nothing");
    EXPECT_EQ(resolved(folder / "missing/below"), "nothing");
    EXPECT_EQ(resolvedPath(nil), nil);
}

TEST_F(Steps, LinksAlongTheWayAreResolved) {
    fs::create_directories(folder / "real/Applications");
    fs::create_symlink("real", folder / "relative");
    fs::create_symlink(folder / "relative", folder / "absolute");
    fs::create_symlink("../relative/../real/Applications", folder / "real/up");
    EXPECT_EQ(resolved(folder / "absolute/Applications"), folder / "real/Applications");
    EXPECT_EQ(resolved(folder / "real/up"), folder / "real/Applications");
}

TEST_F(Steps, LinksToNowhereAndInACircleAreNothing) {
    fs::create_symlink("missing", folder / "broken");
    fs::create_symlink("two", folder / "one");
    fs::create_symlink("one", folder / "two");
    EXPECT_EQ(resolved(folder / "broken"), "nothing");
    EXPECT_EQ(resolved(folder / "one"), "nothing");
}

TEST_F(Steps, AnAliasFileIsFollowed) {
    fs::create_directories(folder / "real/Applications");
    writeFile(folder / "alias.desktop",
              "[Desktop Entry]\nType=Link\nName=alias\nURL=file://" + (folder / "real") + "\n");
    EXPECT_EQ(resolved(folder / "alias.desktop"), folder / "real");
    EXPECT_EQ(resolved(folder / "alias.desktop/Applications"), folder / "real/Applications");
}

TEST_F(Steps, WhatCannotBeTrashedIsLogged) {
    EXPECT_FALSE(trashPath(text(folder / "missing.app")));
    EXPECT_THAT(logged, ElementsAre("ERROR -- Could not trash '" + (folder / "missing.app") + "'"));
}

std::string bytes(NSString* command) {
    return [command UTF8String];
}

TEST_F(Steps, CommandsForOrdinaryPathsAreTheDocumentedOnes) {
    EXPECT_EQ(bytes(relaunchCommand(42, @"/Applications/Photo Box.app")),
              "(while [ `ps -p 42 | wc -l` -gt 1 ]; do sleep 0.1; done; /usr/bin/xattr -d -r "
              "com.apple.quarantine '/Applications/Photo Box.app'; open "
              "'/Applications/Photo Box.app') &");
    EXPECT_EQ(bytes(detachCommand(@"/Volumes/Photo Box")),
              "(sleep 5 && hdiutil detach '/Volumes/Photo Box') &");
    EXPECT_EQ(bytes(runningCommand(@"/Applications/Photo Box.app")),
              "ps ax -o comm | grep '/Applications/Photo Box.app/' | grep -v grep >/dev/null");
}

TEST_F(Steps, TheQuarantineIsTakenAwayAsTheVersionCan) {
    for (const double plain : {824.1 + 1, 900.0, 949.0, 949.99}) {
        version = plain;
        EXPECT_EQ(bytes(relaunchCommand(7, @"/A.app")),
                  "(while [ `ps -p 7 | wc -l` -gt 1 ]; do sleep 0.1; done; /usr/bin/xattr -d "
                  "com.apple.quarantine '/A.app'; open '/A.app') &");
    }
    for (const double old : {743.0, 824.0, 824.9}) {
        version = old;
        EXPECT_EQ(bytes(relaunchCommand(7, @"/A.app")),
                  "(while [ `ps -p 7 | wc -l` -gt 1 ]; do sleep 0.1; done;  open '/A.app') &");
    }
}

// The words that a real shell makes of it, one a line.
std::string wordsOf(NSString* path) {
    const std::string command = [detachCommand(path) UTF8String];
    const size_t begin = command.find("detach ") + 7;
    const std::string quoted = command.substr(begin, command.rfind(") &") - begin);
    FILE* const shell = popen(("printf '<%s>' " + quoted).c_str(), "r");
    std::string words;
    for (int byte; (byte = std::fgetc(shell)) != EOF;)
        words += static_cast<char>(byte);
    pclose(shell);
    return words;
}

TEST_F(Steps, AnyPathIsOneWordOfACommand) {
    for (const char* path : {"/it's", "''", "'", "/a' b'", "/$(id)`id`;id|id&id>x<y", "/\\' x",
                             "/a\nb\n", "/\"'\"'", "/%s%@%d", "/*?[a]~#!", "/\u00fc \u65e5'\u672c"})
        EXPECT_EQ(wordsOf(text(path)), "<" + std::string(path) + ">");
}

constexpr const char* kRights = "system.privilege.admin 19";
constexpr const char* kRemove = "/bin/rm -rf /Applications/A.app";
constexpr const char* kCopy = "/bin/cp -pR /from/A.app /Applications/A.app";

PrivilegedCopy copy() {
    return copyWithPrivileges(@"/from/A.app", @"/Applications/A.app");
}

TEST_F(Steps, RightsAreAskedForThenTheOldCopyIsRemovedAndTheNewOneMade) {
    EXPECT_EQ(copy(), PrivilegedCopy::Done);
    EXPECT_THAT(platform.calls, ElementsAre("create", kRights, kRemove, kCopy, "free"));
}

TEST_F(Steps, WhatTheRemovalEndsWithDoesNotMatter) {
    platform.ends = {"1", "0"};
    EXPECT_EQ(copy(), PrivilegedCopy::Done);
}

TEST_F(Steps, ARemovalThatIsKilledOrNotSeenStopsTheCopy) {
    for (const char* end : {"signal", "gone"}) {
        platform = {};
        platform.ends = {end, "0"};
        EXPECT_EQ(copy(), PrivilegedCopy::Failed);
        EXPECT_THAT(platform.calls, ElementsAre("create", kRights, kRemove, "free"));
    }
}

TEST_F(Steps, ACopyThatFailsIsKilledOrNotSeenIsAFailure) {
    for (const char* end : {"1", "127", "signal", "gone"}) {
        platform = {};
        platform.ends = {"0", end};
        EXPECT_EQ(copy(), PrivilegedCopy::Failed) << end;
        EXPECT_THAT(platform.calls, ElementsAre("create", kRights, kRemove, kCopy, "free"));
    }
}

TEST_F(Steps, WithoutAnAuthorizationThereIsNothingToFree) {
    platform.made = errAuthorizationInternal;
    EXPECT_EQ(copy(), PrivilegedCopy::Failed);
    EXPECT_THAT(platform.calls, ElementsAre("create"));
}

TEST_F(Steps, ACancelledAuthorizationIsToldFromARefusedOne) {
    platform.rights = -60006;
    EXPECT_EQ(copy(), PrivilegedCopy::Cancelled);
    EXPECT_THAT(platform.calls, ElementsAre("create", kRights, "free"));
    platform = {};
    platform.rights = errAuthorizationDenied;
    EXPECT_EQ(copy(), PrivilegedCopy::Failed);
    EXPECT_THAT(platform.calls, ElementsAre("create", kRights, "free"));
}

TEST_F(Steps, AProgramThatCannotBeExecutedIsAFailure) {
    platform.executed = errAuthorizationToolExecuteFailure;
    EXPECT_EQ(copy(), PrivilegedCopy::Failed);
    EXPECT_THAT(platform.calls, ElementsAre("create", kRights, kRemove, "free"));
}

TEST_F(Steps, OnlyApplicationsAreRemovedWithPrivileges) {
    for (NSString* destination in @[ @"", @"  ", @"/Applications", @"/Applications/A.app/x" ])
        EXPECT_EQ(copyWithPrivileges(@"/from/A.app", destination), PrivilegedCopy::Failed);
    EXPECT_EQ(copyWithPrivileges(@"/from/A.app", nil), PrivilegedCopy::Failed);
    EXPECT_EQ(copyWithPrivileges(@" \t", @"/Applications/A.app"), PrivilegedCopy::Failed);
    EXPECT_TRUE(platform.calls.empty());
}

// Once found the entry is kept: a process of its own has not found it yet.
TEST_F(Steps, WhereTheSystemNoLongerOffersItTheCopyFails) {
    constexpr const char* alone = "ULA_TEST_ALONE";
    if (std::getenv(alone) == nullptr) {
        const pid_t child = fork();
        if (child == 0) {
            setenv(alone, "", 1);
            execl("/proc/self/exe", "MoveStepsTest", "--gtest_filter=*NoLongerOffers*", nullptr);
            _exit(1);
        }
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        ASSERT_EQ(status, 0);
        return;
    }
    privilegedExecution = nullptr;
    EXPECT_EQ(copy(), PrivilegedCopy::Failed);
    EXPECT_THAT(platform.calls, ElementsAre("create", kRights, "free"));
}

TEST_F(Steps, AnApplicationsFolderIsOneAtAnyDepthAndNoOtherName) {
    setenv("HOME", folder.path().c_str(), 1);
    for (NSString* path in @[
             @"/Volumes/Other/Applications/A.app", @"/x/Applications", @"/Applications/A.app",
             text(folder / "Applications/A.app"), text(folder / ".local/bin/A.app"),
             @"/usr/local/A.app", @"/opt/A.app", @"/usr/bin/photo"
         ])
        EXPECT_TRUE(isInApplicationsFolder(path)) << [path UTF8String];
    for (NSString* path in @[
             @"/Volumes/Other/A.app", @"/x/Applications2/A.app", @"/x/applications/A.app",
             text(folder / "A.app")
         ])
        EXPECT_FALSE(isInApplicationsFolder(path)) << [path UTF8String];
}

}  // namespace
