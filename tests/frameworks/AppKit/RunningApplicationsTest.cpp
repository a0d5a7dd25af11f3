// SPDX-License-Identifier: MIT
// Which processes are applications: on a machine of the test's own. Needs root, to give one away.
#include "AppKit/RunningApplications.h"
#include "AppKit/DesktopEntries.h"
#include "AppKit/ProcessTable.h"

#include "tests/support/TemporaryFolder.h"

#include <filesystem>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace appkit;
using namespace tav::test;
namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

struct Process {
    pid_t number;
    std::string program;
    int parent = 1;
    int group = 0;
    std::vector<std::string> arguments = {};
    std::vector<std::string> variables = {};
};

class Machine : public testing::Test {
protected:
    Machine() {
        fs::create_directory(folder / "proc");
        fs::create_directories(folder / "share/applications");
        fs::create_directory(folder / "bin");
    }

    // The later it is made, the later it has begun.
    void run(const Process& process) {
        const std::string place = folder / "proc/" + std::to_string(process.number);
        fs::create_directory(place);
        fs::create_symlink(process.program, place + "/exe");
        fs::create_symlink(folder.path(), place + "/cwd");
        const int group = process.group != 0 ? process.group : process.number;
        writeFile(place + "/stat",
                  std::to_string(process.number) + " (a ) b) S " + std::to_string(process.parent) +
                      " " + std::to_string(group) + " 1 0 -1 4194560 1 2 3 4 5 6 7 8 20 0 1 0 " +
                      std::to_string(++_ticks) + " 999 88\n");
        writeFile(place + "/cmdline", joined(process.arguments));
        writeFile(place + "/environ", joined(process.variables));
    }
    std::string makeProgram(const std::string& path, const std::string& text = "") {
        const std::string full = folder / path;
        fs::create_directories(fs::path(full).parent_path());
        writeFile(full, text);
        chmod(full.c_str(), 0755);
        return full;
    }
    void makeEntry(const std::string& name, const std::string& lines) {
        const std::string path = folder / "share/applications/" + name;
        fs::create_directories(fs::path(path).parent_path());
        writeFile(path, "[Desktop Entry]\nType=Application\n" + lines);
    }
    // "NAME IDENTIFIER PROCESS"
    std::vector<std::string> applications() {
        const ProcessTable processes(folder / "proc");
        std::vector<std::string> found;
        for (const RunningApplication& each : RunningApplications(processes, _entries).list())
            found.push_back(each.identity.name + " " + each.identity.identifier + " " +
                            std::to_string(each.process));
        return found;
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};

private:
    static std::string joined(const std::vector<std::string>& texts) {
        std::string bytes;
        for (const std::string& text : texts)
            bytes += text + '\0';
        return bytes;
    }

    int _ticks = 100;
    DesktopEntries _entries{{folder / "home/applications", folder / "share/applications"},
                            folder / "bin"};
};

TEST_F(Machine, ProgramsWithoutBundleOrEntryAreNoApplications) {
    run({10, makeProgram("bin/tool")});
    EXPECT_THAT(applications(), IsEmpty());
}

TEST_F(Machine, ProgramsOfEntriesAreFoundOnThePath) {
    makeEntry("org.maker.Photo.desktop", "Name=Photo Box\nName[de]=Fotokiste\nExec=photo %U\n");
    run({10, makeProgram("bin/photo")});
    EXPECT_THAT(applications(), ElementsAre("Photo Box org.maker.Photo 10"));
}

TEST_F(Machine, EntriesThatComeLaterAreSeen) {
    run({10, makeProgram("bin/photo")});
    EXPECT_THAT(applications(), IsEmpty());
    makeEntry("photo.desktop", "Name=Photo\nExec=photo\n");
    EXPECT_THAT(applications(), ElementsAre("Photo photo 10"));
}

TEST_F(Machine, EntriesInFoldersHaveTheirNames) {
    makeEntry("maker/photo.desktop", "Name=Photo\nExec=photo\n");
    run({10, makeProgram("bin/photo")});
    EXPECT_THAT(applications(), ElementsAre("Photo maker-photo 10"));
}

TEST_F(Machine, AnEntryOfTheUsersHidesTheSystems) {
    makeEntry("photo.desktop", "Name=Photo\nExec=photo\n");
    run({10, makeProgram("bin/photo")});
    fs::create_directories(folder / "home/applications");
    writeFile(folder / "home/applications/photo.desktop",
              "[Desktop Entry]\nType=Application\nName=Photo\nExec=photo\nHidden=true\n");
    EXPECT_THAT(applications(), IsEmpty());
}

TEST_F(Machine, AScriptIsFoundBehindItsInterpreter) {
    const std::string interpreter = makeProgram("bin/python3");
    const std::string script = makeProgram("opt/photo.py", "#!/usr/bin/env python3\n");
    makeEntry("photo.desktop", "Name=Photo\nExec=" + script + "\n");
    run({10, interpreter, 1, 0, {"python3", "-u", "opt/photo.py"}});
    run({11, interpreter, 1, 0, {"python3", "other.py"}});
    run({12, interpreter, 1, 0, {"python3"}});
    EXPECT_THAT(applications(), ElementsAre("Photo photo 10"));
}

TEST_F(Machine, OfSeveralEntriesTheLaunchedOneCounts) {
    const std::string office = makeProgram("bin/office");
    makeEntry("calc.desktop", "Name=Calc\nExec=office --calc %U\n");
    makeEntry("office.desktop", "Name=Office\nExec=office %U\n");
    const std::string file =
        "GIO_LAUNCHED_DESKTOP_FILE=" + (folder / "share/applications/calc.desktop");
    run({10, office, 1, 0, {}, {"A=b", file, "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}});
    // Inherited from the process that was launched.
    run({11, office, 1, 0, {}, {file, "GIO_LAUNCHED_DESKTOP_FILE_PID=10"}});
    EXPECT_THAT(applications(), ElementsAre("Calc calc 10", "Office office 11"));
}

TEST_F(Machine, HelpersBelongToTheirParents) {
    makeEntry("browser.desktop", "Name=Browser\nExec=browser\n");
    const std::string browser = makeProgram("bin/browser");
    run({10, browser});
    run({11, browser, 10, 10});
    run({12, browser, 11, 10});
    // Started by the first one as an instance of its own.
    run({13, browser, 10, 13});
    EXPECT_THAT(applications(), ElementsAre("Browser browser 10", "Browser browser 13"));
}

TEST_F(Machine, ApplicationsOfOthersAreTheirs) {
    makeEntry("photo.desktop", "Name=Photo\nExec=photo\n");
    run({10, makeProgram("bin/photo")});
    ASSERT_EQ(chown((folder / "proc/10").c_str(), 65534, 65534), 0);
    EXPECT_THAT(applications(), IsEmpty());
}

TEST_F(Machine, BundlesOfBothLayoutsAreKnown) {
    const std::string modern = makeProgram("Photo.app/Contents/MacOS/Photo");
    writeFile(folder / "Photo.app/Contents/Info.plist",
              "<?xml version=\"1.0\"?><plist "
              "version=\"1.0\"><dict><key>CFBundleDisplayName</key><string>Photo Box</string>"
              "<key>CFBundleName</key><string>Photo</string>"
              "<key>CFBundleIdentifier</key><string>com.maker.photo</string></dict></plist>");
    const std::string classic = makeProgram("Ink.app/Ink");
    fs::create_directory(folder / "Ink.app/Resources");
    writeFile(folder / "Ink.app/Resources/Info-gnustep.plist", "{ NSExecutable = Ink; }");
    run({20, classic});
    run({3, modern});
    // In the order in which they began.
    EXPECT_THAT(applications(), ElementsAre("Ink  20", "Photo Box com.maker.photo 3"));
}

TEST_F(Machine, HelpersInBundlesAreNotTheApplication) {
    makeProgram("Photo.app/Contents/MacOS/Photo");
    writeFile(
        folder / "Photo.app/Contents/Info.plist",
        "<?xml version=\"1.0\"?><plist "
        "version=\"1.0\"><dict><key>CFBundleExecutable</key><string>Photo</string></dict></plist>");
    run({10, makeProgram("Photo.app/Contents/MacOS/Indexer")});
    EXPECT_THAT(applications(), IsEmpty());
}

TEST_F(Machine, AListOfPropertiesThatIsNoneGivesTheFoldersName) {
    const std::string program = makeProgram("Photo Box.app/Contents/MacOS/Photo");
    writeFile(folder / "Photo Box.app/Contents/Info.plist",
              "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>");
    run({10, program});
    EXPECT_THAT(applications(), ElementsAre("Photo Box  10"));
}

TEST_F(Machine, AListThatEndsGNUstepsReaderIsNoneAsWell) {
    const std::string program = makeProgram("Photo Box.app/Contents/MacOS/Photo");
    // An array that holds itself.
    std::string list = "bplist00\xA1";
    list += std::string(1, '\0') + "\x08" + std::string(6, '\0') + "\x01\x01" +
            std::string(7, '\0') + "\x01" + std::string(15, '\0') + "\x0A";
    writeFile(folder / "Photo Box.app/Contents/Info.plist", list);
    run({10, program});
    EXPECT_THAT(applications(), ElementsAre("Photo Box  10"));
}

TEST_F(Machine, APipeInTheListsPlaceIsNotWaitedFor) {
    const std::string program = makeProgram("Photo Box.app/Contents/MacOS/Photo");
    ASSERT_EQ(mkfifo((folder / "Photo Box.app/Contents/Info.plist").c_str(), 0600), 0);
    run({10, program});
    EXPECT_THAT(applications(), ElementsAre("Photo Box  10"));
}

TEST_F(Machine, ProcessesThatEndMeanwhileAreLeftOut) {
    makeEntry("photo.desktop", "Name=Photo\nExec=photo\n");
    run({10, makeProgram("bin/photo")});
    fs::remove(folder / "proc/10/stat");
    EXPECT_THAT(applications(), IsEmpty());
}

TEST(DesktopEntry, OnlyItsOwnGroupIsRead) {
    const auto entry = parseDesktopEntry("# remark\n[Desktop Entry]\r\nType = Application\n"
                                         "Name=A\\sb\nExec=a\nDBusActivatable=true\n"
                                         "[Desktop Action New]\nName=New\nExec=b\n");
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "A b");
    EXPECT_THAT(entry->command, ElementsAre("a"));
    EXPECT_TRUE(entry->isActivatable);
}

TEST(DesktopEntry, WhatIsNoApplicationIsNone) {
    EXPECT_FALSE(parseDesktopEntry(""));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=A\nExec=a\n"));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\nName=A\n"));
    EXPECT_FALSE(parseDesktopEntry("Type=Application\nExec=a\n"));
}

TEST(DesktopEntry, CommandsAreTakenApart) {
    EXPECT_THAT(wordsOfCommand("a %U  b%f 50%% %%"), ElementsAre("a", "b%f", "50%%", "%%"));
    EXPECT_THAT(wordsOfCommand("\"/opt/my app/a\" \"x\\\"y\" \"\""),
                ElementsAre("/opt/my app/a", "x\"y", ""));
    EXPECT_THAT(wordsOfCommand("  "), IsEmpty());
    const auto entry =
        parseDesktopEntry("[Desktop Entry]\nType=Application\nExec=env A=b C= photo -n\n");
    EXPECT_THAT(entry->command, ElementsAre("photo", "-n"));
}

}  // namespace
