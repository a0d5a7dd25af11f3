// SPDX-License-Identifier: MIT
// Real applications that move, with their alerts on an X server, as a user who may write to every
// Applications folder.
#include "tests/Mac/MoveFixture.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/inotify.h>
#include <sys/ioctl.h>
#include <sys/xattr.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr const char* kName = "Photo Box.app";

class Moving : public MoveFixture {
protected:
    /// An application of the name that is there already, and its file.
    std::string putExisting(const std::string& place = "/Applications") {
        const std::string bundle = place + "/" + kName;
        fs::create_directories(bundle);
        writeFile(bundle + "/old", "old");
        return bundle;
    }
    /// What an older AppKit asks.
    static std::string oldQuestion(const std::string& note = "") {
        return question(kToMachine, note, "");
    }
};

class OpenedFolder {
public:
    explicit OpenedFolder(const std::string& path) : _events(inotify_init1(IN_NONBLOCK)) {
        inotify_add_watch(_events, path.c_str(), IN_OPEN | IN_ACCESS);
    }
    ~OpenedFolder() { close(_events); }
    OpenedFolder(const OpenedFolder&) = delete;
    OpenedFolder& operator=(const OpenedFolder&) = delete;
    bool wasLookedInto() const {
        char events[4096];
        return read(_events, events, sizeof events) > 0;
    }

private:
    int _events;
};

TEST_F(Moving, ABundleUnderAFolderOfTheNameApplicationsIsLeftAlone) {
    const std::string bundle = install("Users/someone/Applications/Tools");
    const Run result = run(bundle, "");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, "returned"));
    EXPECT_EQ(result.exitCode, 7);
}

TEST_F(Moving, ABundleWhereTheUserInstallsProgramsIsLeftAlone) {
    const std::string bundle = install("home/.local/bin");
    EXPECT_THAT(run(bundle, "").lines, ElementsAre("started " + bundle, "returned"));
}

TEST_F(Moving, ToTheMachinesFolderWhereTheHomeFolderHasNone) {
    const std::string bundle = install("desk");
    const std::string destination = applications + "/" + kName;
    const Run result = run(bundle, "0");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, question(kToMachine), kMoving,
                                          relaunch("SELF", destination)));
    EXPECT_EQ(result.exitCode, 0);
    expectOpened(destination);
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_THAT(trashed(), ElementsAre(kName));
}

TEST_F(Moving, AnEmptyFolderInTheHomeFolderIsNotChosen) {
    fs::create_directory(home + "/Applications");
    const std::string bundle = install("desk");
    EXPECT_THAT(run(bundle, "1").lines,
                ElementsAre("started " + bundle, question(kToMachine), "returned"));
}

TEST_F(Moving, AFolderInTheHomeFolderWithoutApplicationsIsNotChosen) {
    fs::create_directories(home + "/Applications/Notes.apps");
    writeFile(home + "/Applications/app", "");
    const std::string bundle = install("desk");
    EXPECT_THAT(run(bundle, "1").lines,
                ElementsAre("started " + bundle, question(kToMachine), "returned"));
}

TEST_F(Moving, AFolderInTheHomeFolderWithAnApplicationIsChosen) {
    fs::create_directories(home + "/Applications/Other.app");
    const std::string bundle = install("desk");
    const std::string destination = home + "/Applications/" + kName;
    const Run result = run(bundle, "0");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, question(kToHome), kMoving,
                                          relaunch("SELF", destination)));
    expectOpened(destination);
}

TEST_F(Moving, TheFolderInTheHomeFolderMayBeALink) {
    fs::create_directories(folder / "elsewhere/Other.app");
    fs::create_symlink("../elsewhere", home + "/Applications");
    const std::string bundle = install("desk");
    const std::string destination = folder / "elsewhere/Photo Box.app";
    EXPECT_THAT(run(bundle, "0").lines, ElementsAre("started " + bundle, question(kToHome), kMoving,
                                                    relaunch("SELF", destination)));
    // That folder is none of applications: it asks again.
    EXPECT_EQ(nextLine(), "started " + destination);
    EXPECT_EQ(nextLine(), question(kToHome));
}

TEST_F(Moving, DecliningWithTheBoxOffComesBackAtTheNextStart) {
    const std::string bundle = install("desk");
    for (int i = 0; i < 2; ++i)
        EXPECT_THAT(run(bundle, "1").lines,
                    ElementsAre("started " + bundle, question(kToMachine), "returned"));
}

TEST_F(Moving, EscapeDeclines) {
    const std::string bundle = install("desk");
    const Run result = run(bundle, "escape");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, question(kToMachine), "returned"));
    EXPECT_EQ(result.exitCode, 7);
}

TEST_F(Moving, DecliningWithTheBoxOnIsForGoodAndNothingIsReadAnyMore) {
    fs::create_directories(home + "/Applications/Other.app");
    const std::string bundle = install("desk");
    EXPECT_THAT(run(bundle, "box 1").lines,
                ElementsAre("started " + bundle, question(kToHome), "returned"));
    const OpenedFolder opened(home + "/Applications");
    EXPECT_THAT(run(bundle, "").lines, ElementsAre("started " + bundle, "returned"));
    EXPECT_FALSE(opened.wasLookedInto());
    fs::directory_iterator{home + "/Applications"};
    EXPECT_TRUE(opened.wasLookedInto());
}

TEST_F(Moving, MovingWithTheBoxOnDoesNotSilenceTheQuestion) {
    const std::string bundle = install("desk");
    EXPECT_EQ(run(bundle, "box 0").exitCode, 0);
    expectOpened(applications + "/" + kName);
    const std::string again = install("desk");
    EXPECT_THAT(run(again, "1").lines,
                ElementsAre("started " + again, question(kToMachine), "returned"));
}

TEST_F(Moving, DecliningOnceIsForGoodWithAnOlderAppKit) {
    const std::string bundle = install("desk");
    EXPECT_THAT(run(bundle, "1", {{"MOVE_APPKIT", "824.41"}}).lines,
                ElementsAre("started " + bundle, oldQuestion(), "returned"));
    EXPECT_THAT(run(bundle, "", {{"MOVE_APPKIT", "824.41"}}).lines,
                ElementsAre("started " + bundle, "returned"));
}

constexpr const char* kUncluttered = " This will keep your Downloads folder uncluttered.";

TEST_F(Moving, FromTheDownloadsFolderItSaysSo) {
    const std::string bundle = install("home/Downloads/new");
    EXPECT_THAT(run(bundle, "1").lines,
                ElementsAre("started " + bundle, question(kToMachine, kUncluttered), "returned"));
}

TEST_F(Moving, TheDownloadsFolderIsTheDesktops) {
    fs::create_directories(home + "/.config");
    writeFile(home + "/.config/user-dirs.dirs", "XDG_DOWNLOAD_DIR=\"$HOME/Geladen\"\n");
    const std::string bundle = install("home/Geladen");
    const Variables variables = {{"XDG_CONFIG_HOME", home + "/.config"}};
    EXPECT_THAT(run(bundle, "1", variables).lines,
                ElementsAre("started " + bundle, question(kToMachine, kUncluttered), "returned"));
}

TEST_F(Moving, AnOlderAppKitKnowsDownloadsByTheNameOfTheFolder) {
    const std::string bundle = install("disk/Downloads");
    EXPECT_THAT(run(bundle, "1").lines,
                ElementsAre("started " + bundle, question(kToMachine), "returned"));
    EXPECT_THAT(run(bundle, "1", {{"MOVE_APPKIT", "824"}}).lines,
                ElementsAre("started " + bundle, oldQuestion(kUncluttered), "returned"));
}

TEST_F(Moving, CancellingWhereAnApplicationExistsEndsTheProcess) {
    const std::string existing = putExisting();
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 1");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving, kExists));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(readFile(existing + "/old"), "old");
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_THAT(trashed(), ElementsAre());
}

TEST_F(Moving, ContinuingMovesTheExistingApplicationToTheTrash) {
    const std::string existing = putExisting(home + "/Applications");
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, question(kToHome), kMoving, kExists,
                                          relaunch("SELF", existing)));
    expectOpened(existing);
    EXPECT_FALSE(fs::exists(existing + "/old"));
    EXPECT_EQ(trashed().size(), 2u);
}

TEST_F(Moving, WhatAppearsWhileTheUserThinksIsAskedAbout) {
    const std::string bundle = install("desk");
    const std::string late = applications + "/" + kName;
    const Run result = run(bundle, "late 0 1", {{"MOVE_LATE", late}});
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving, kExists));
    EXPECT_TRUE(fs::exists(late));
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(Moving, ARunningCopyOfTheExistingApplicationIsSwitchedTo) {
    const std::string existing = putExisting();
    fs::create_directories(existing + "/Contents/MacOS");
    const std::string program = existing + "/Contents/MacOS/Photo Box";
    fs::copy_file(ULA_RUNNING_PROGRAM, program);
    writeFile(existing + "/Contents/Info.plist",
              "<plist version=\"1.0\"><dict><key>CFBundleName</key><string>Photo Box</string>"
              "</dict></plist>");
    RunningProgram running(program, "wait");
    ASSERT_EQ(running.readLine(), "ready");
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving, kExists,
                            "log: INFO -- Switching to an already running version",
                            "task: /usr/bin/open | " + existing));
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(fs::exists(bundle));
    EXPECT_TRUE(fs::exists(existing + "/old"));
}

TEST_F(Moving, AnOlderAppKitFindsARunningCopyInTheTableOfProcesses) {
    const std::string existing = putExisting();
    const std::string bundle = install("desk");
    const std::string search =
        "task: /bin/sh | -c | ps ax -o comm | grep '" + existing + "/' | grep -v grep >/dev/null";
    // The table of this system has no paths.
    fs::create_directory(folder / "bin");
    writeFile(folder / "bin/ps", "#!/bin/sh\n[ \"$*\" = 'ax -o comm' ] && echo '" + existing +
                                     "/Contents/MacOS/Photo Box'\n");
    fs::permissions(folder / "bin/ps", fs::perms(0755));
    const Run result = run(
        bundle, "0 0", {{"MOVE_APPKIT", "949.33"}, {"PATH", (folder / "bin") + ":/usr/bin:/bin"}});
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving, kExists, search,
                            "log: INFO -- Switching to an already running version",
                            "task: /usr/bin/open | " + existing));
    EXPECT_EQ(result.exitCode, 0);
}

TEST_F(Moving, AnOlderAppKitThatFindsNoneGoesOn) {
    const std::string existing = putExisting(home + "/Applications");
    const std::string bundle = install("desk");
    const std::string search =
        "task: /bin/sh | -c | ps ax -o comm | grep '" + existing + "/' | grep -v grep >/dev/null";
    const Run result = run(bundle, "0 0", {{"MOVE_APPKIT", "949.33"}});
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToHome), kMoving, kExists, search,
                            relaunch("SELF", existing, "/usr/bin/xattr -d com.apple.quarantine")));
    expectOpened(existing);
}

TEST_F(Moving, TheOldestAppKitDoesNotCopy) {
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0", {{"MOVE_APPKIT", "824"}});
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, oldQuestion(), kMoving,
                            "log: ERROR -- Could not copy myself to /Applications/Photo Box.app",
                            kFailed, "returned"));
    EXPECT_EQ(result.exitCode, 7);
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(Moving, AnExistingApplicationThatCannotBeTrashedStopsTheMove) {
    const std::string existing = putExisting();
    const int item = open(existing.c_str(), O_RDONLY);
    int flags = FS_IMMUTABLE_FL;
    ASSERT_EQ(ioctl(item, FS_IOC_SETFLAGS, &flags), 0);
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0 0");
    flags = 0;
    ioctl(item, FS_IOC_SETFLAGS, &flags);
    close(item);
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving, kExists,
                            "log: ERROR -- Could not trash '" + existing + "'", kFailed,
                            "returned"));
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(Moving, NothingIsLostWhenTheCopyFailsHalfway) {
    machineFolder.reset();
    const MountedMemory small(applications);
    const std::string bundle = install("desk");
    const std::string content(4 << 20, 'x');
    writeFile(bundle + "/Contents/large", content);
    const Run result = run(bundle, "0 0");
    const std::string destination = applications + "/" + kName;
    ASSERT_EQ(result.lines.size(), 7u);
    EXPECT_THAT(result.lines[3], testing::StartsWith("log: ERROR -- Could not copy '" + bundle +
                                                     "' to '" + destination + "' ("));
    EXPECT_THAT(result.lines[3], testing::HasSubstr("No space left on device"));
    EXPECT_EQ(result.lines[4], "log: ERROR -- Could not copy myself to " + destination);
    EXPECT_EQ(result.lines[5], kFailed);
    EXPECT_EQ(result.lines[6], "returned");
    EXPECT_EQ(readFile(bundle + "/Contents/large"), content);
    EXPECT_TRUE(fs::is_empty(applications));
}

TEST_F(Moving, TheMarkOfADownloadIsTakenFromTheNewCopy) {
    const std::string bundle = install("desk");
    const char* const name = "user.com.apple.quarantine";
    const std::string list = "/Contents/Info.plist";
    for (const std::string& item : {bundle, bundle + list})
        ASSERT_EQ(setxattr(item.c_str(), name, "0081", 4, 0), 0);
    const std::string destination = applications + "/" + kName;
    EXPECT_EQ(run(bundle, "0").exitCode, 0);
    expectOpened(destination);
    for (const std::string& item : {destination, destination + list})
        EXPECT_EQ(getxattr(item.c_str(), name, nullptr, 0), -1) << item;
}

TEST_F(Moving, HostileNamesRunNothing) {
    fs::current_path(folder.path());
    const std::string name = "a'; touch one; '$(touch two)`touch three`\"; touch four #&";
    const std::string bundle = install("desk'$(touch five)", name);
    const std::string destination = applications + "/" + name + ".app";
    // Sanitizers wait for ever for names of functions in a program of such a name.
    const Variables quiet = {{"ASAN_OPTIONS", "detect_leaks=0"}, {"TSAN_OPTIONS", "report_bugs=0"}};
    EXPECT_EQ(run(bundle, "0", quiet).exitCode, 0);
    expectOpened(destination);
    EXPECT_FALSE(fs::exists(bundle));
    for (const char* made : {"one", "two", "three", "four", "five"}) {
        EXPECT_FALSE(fs::exists(folder / made));
        EXPECT_FALSE(fs::exists(home + "/" + made));
        EXPECT_FALSE(fs::exists(std::string("/") + made));
    }
    fs::current_path("/");
}

TEST_F(Moving, NamesInOtherScriptsAreMovedInEveryLocale) {
    const std::string name = "Fr\u00fchling \u65e5\u672c";
    for (const char* locale : {"C", "C.UTF-8"}) {
        const std::string bundle = install("desk", name);
        EXPECT_EQ(run(bundle, "0", {{"LC_ALL", locale}}).exitCode, 0);
        expectOpened(applications + "/" + name + ".app");
        fs::remove_all(applications + "/" + name + ".app");
    }
}

}  // namespace
