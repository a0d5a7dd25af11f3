// SPDX-License-Identifier: MIT
// The folders of the user, and those of programs in every place where one may lie: this one copies
// itself there and asks itself.
#include "ula/SpecialFolders.h"

#include "ula/ModuleMac.h"
#include "ula/ScopedARPool.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"

#import <Foundation/Foundation.h>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::ula {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

/// What a program prints of itself.
void printAnswers() {
    const ScopedARPool pool;
    const ModuleMac main(nullptr);
    for (const FastString& answer :
         {main.getPath(), main.getID(), SpecialFolders::myApplicationResourcePath(nullptr),
          SpecialFolders::myApplicationFrameworkPath(nullptr),
          SpecialFolders::myApplicationExecutionPath(nullptr),
          SpecialFolders::myProfilesPath(nullptr)})
        std::cout << answer.toStdString() << "\n";
}

struct Answers {
    std::string path, identifier, resources, frameworks, execution, profiles;
};

class ProgramPlaces : public testing::Test {
protected:
    void make(const std::string& path) { fs::create_directories(folder / path); }
    void writeInformation(const std::string& path, const std::string& identifier) {
        test::writeFile(folder / path, "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>"
                                       "CFBundleIdentifier</key><string>" +
                                           identifier + "</string></dict></plist>");
    }
    /// Of a copy of this program there.
    Answers ask(const std::string& program) {
        make(fs::path(program).parent_path().string());
        fs::copy_file("/proc/self/exe", folder / program);
        const std::string command = "'" + folder / program + "' --answers";
        std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
        std::vector<std::string> lines(1);
        for (int c = fgetc(output.get()); c != EOF; c = fgetc(output.get())) {
            if (c == '\n')
                lines.emplace_back();
            else
                lines.back() += static_cast<char>(c);
        }
        EXPECT_EQ(lines.size(), 7u);
        lines.resize(6);
        return {lines[0], lines[1], lines[2], lines[3], lines[4], lines[5]};
    }

    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
};

TEST_F(ProgramPlaces, BundleWithAContentsFolder) {
    make("Applications/Some.app/Contents/Resources");
    make("Applications/Some.app/Contents/Frameworks");
    writeInformation("Applications/Some.app/Contents/Info.plist", "org.example.some");
    const Answers some = ask("Applications/Some.app/Contents/MacOS/Some");
    EXPECT_EQ(some.path, folder / "Applications/Some.app");
    EXPECT_EQ(some.identifier, "org.example.some");
    EXPECT_EQ(some.resources, folder / "Applications/Some.app/Contents/Resources");
    EXPECT_EQ(some.frameworks, folder / "Applications/Some.app/Contents/Frameworks");
    EXPECT_EQ(some.execution, folder / "Applications");
    EXPECT_EQ(some.profiles, some.frameworks + "/Profiles");
}

TEST_F(ProgramPlaces, BundleThatLacksItsFolders) {
    const Answers bare = ask("Bare.app/Contents/MacOS/Bare");
    EXPECT_EQ(bare.path, folder / "Bare.app");
    EXPECT_EQ(bare.identifier + bare.resources + bare.frameworks, "");
    EXPECT_EQ(bare.execution, folder.path().string());
    EXPECT_EQ(bare.profiles, "/Profiles");
}

TEST_F(ProgramPlaces, BundleOfGNUsteps) {
    make("Some.app/Resources");
    writeInformation("Some.app/Resources/Info-gnustep.plist", "org.example.gnustep");
    const Answers some = ask("Some.app/Some");
    EXPECT_EQ(some.path, folder / "Some.app");
    EXPECT_EQ(some.identifier, "org.example.gnustep");
    EXPECT_EQ(some.resources, folder / "Some.app/Resources");
    EXPECT_EQ(some.execution, folder.path().string());
}

TEST_F(ProgramPlaces, ProgramInTheFoldersOfTheSystem) {
    make("usr/share/some-tool");
    make("usr/lib/some-tool");
    writeInformation("usr/share/some-tool/Info.plist", "org.example.tool");
    const Answers tool = ask("usr/bin/some-tool");
    EXPECT_EQ(tool.path, folder / "usr/bin/some-tool");
    EXPECT_EQ(tool.identifier, "org.example.tool");
    EXPECT_EQ(tool.resources, folder / "usr/share/some-tool");
    EXPECT_EQ(tool.frameworks, folder / "usr/lib/some-tool");
    EXPECT_EQ(tool.execution, folder / "usr/bin");
    EXPECT_EQ(tool.profiles, folder / "usr/lib/some-tool/Profiles");
}

TEST_F(ProgramPlaces, ProgramWithItsDataBesideIt) {
    make("tool dir/Resources");
    const Answers tool = ask("tool dir/tool");
    EXPECT_EQ(tool.resources, folder / "tool dir/Resources");
    EXPECT_EQ(tool.frameworks, "");
    EXPECT_EQ(tool.execution, folder / "tool dir");
    EXPECT_EQ(tool.identifier, "");
}

TEST_F(ProgramPlaces, ProgramThatIsReachedThroughALink) {
    make("opt/tool/share/tool");
    const Answers direct = ask("opt/tool/bin/tool");
    fs::create_directory_symlink(folder / "opt/tool", folder / "current");
    fs::create_symlink("current/bin/tool", folder / "link");
    const std::string command = "'" + folder / "link" + "' --answers | sed -n 3p";
    std::unique_ptr<FILE, int (*)(FILE*)> output(popen(command.c_str(), "r"), pclose);
    char line[4096] = "";
    ASSERT_NE(fgets(line, sizeof line, output.get()), nullptr);
    EXPECT_EQ(line, folder / "opt/tool/share/tool" + "\n");
    EXPECT_EQ(direct.resources + "\n", line);
}

class SpecialFolder : public testing::Test {
protected:
    SpecialFolder() {
        setenv("HOME", home.path().c_str(), 1);
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("XDG_DATA_HOME");
    }
    static std::string text(const FastString& path) { return path.toStdString(); }

    TemporaryFolder home;
    const ScopedARPool pool;
};

TEST_F(SpecialFolder, OnesOfTheUserLieInTheHomeFolder) {
    const std::string path = home.path().string();
    EXPECT_EQ(text(SpecialFolders::home()), path);
    EXPECT_EQ(text(SpecialFolders::myDocuments()), path + "/Documents");
    EXPECT_EQ(text(SpecialFolders::myPictures()), path + "/Pictures");
    EXPECT_EQ(text(SpecialFolders::myMovies()), path + "/Movies");
    EXPECT_EQ(text(SpecialFolders::myMusic()), path + "/Music");
    EXPECT_EQ(text(SpecialFolders::myApplicationData()), path + "/Library/Application Support");
}

TEST_F(SpecialFolder, OnesOfTheUserAreWhereThePlatformSays) {
    for (const auto& [answer, directory] :
         {std::pair{SpecialFolders::myDocuments(), NSDocumentDirectory},
          std::pair{SpecialFolders::myPictures(), NSPicturesDirectory},
          std::pair{SpecialFolders::myMovies(), NSMoviesDirectory},
          std::pair{SpecialFolders::myMusic(), NSMusicDirectory},
          std::pair{SpecialFolders::myApplicationSupportPath(), NSApplicationSupportDirectory}}) {
        NSArray* const urls = [[NSFileManager defaultManager] URLsForDirectory:directory
                                                                     inDomains:NSUserDomainMask];
        EXPECT_EQ(text(answer), [[[urls objectAtIndex:0] path] UTF8String]);
    }
}

TEST_F(SpecialFolder, TemporaryOneIsThePlatforms) {
    EXPECT_EQ(text(SpecialFolders::tempPath()), [NSTemporaryDirectory() UTF8String]);
    EXPECT_TRUE(fs::is_directory(text(SpecialFolders::tempPath())));
}

TEST_F(SpecialFolder, GlobalPreferencesAreTheSameForEveryUser) {
    EXPECT_EQ(text(SpecialFolders::globalPreferences()), "/Library/Preferences");
    setenv("HOME", "/elsewhere", 1);
    EXPECT_EQ(text(SpecialFolders::globalPreferences()), "/Library/Preferences");
}

TEST_F(SpecialFolder, PreferencesAreGivenAndLoggedAtEveryCall) {
    test::LogCapture log;
    const std::string expected = "assertion failed src/Core/SpecialFolders:107\"0\"";
    for (std::size_t calls = 1; calls <= 2; ++calls) {
        EXPECT_EQ(text(SpecialFolders::myPreferences()),
                  home.path().string() + "/Library/Preferences");
        ASSERT_EQ(log.records().size(), calls);
        EXPECT_EQ(log.records().back().text, expected);
        EXPECT_FALSE(log.records().back().stackTrace.empty());
    }
}

TEST_F(SpecialFolder, ComposedOnesAreNotTidied) {
    setenv("HOME", "/", 1);
    EXPECT_EQ(text(SpecialFolders::myApplicationData()), "//Library/Application Support");
}

// As in a container that was given a user's number only. Needs root: changes the user of a child.
TEST_F(SpecialFolder, UserWhomNobodyKnowsGetsAnswersToo) {
    const std::string answers = test::runInChild([] {
        unsetenv("HOME");
        if (setgid(54321) != 0 || setuid(54321) != 0)
            return std::string("the child is still root");
        const bool hasTemporary = fs::is_directory(text(SpecialFolders::tempPath()));
        return text(SpecialFolders::home()) + (hasTemporary ? " and " : " without ") +
               text(SpecialFolders::myApplicationData());
    });
    EXPECT_EQ(answers, "/ and //Library/Application Support");
}

TEST_F(SpecialFolder, NullModuleIsTheMainBundle) {
    const ModuleMac main(nullptr);
    EXPECT_EQ(text(SpecialFolders::myApplicationResourcePath(nullptr)),
              [[[NSBundle mainBundle] resourcePath] UTF8String]);
    EXPECT_EQ(SpecialFolders::myApplicationResourcePath(nullptr),
              SpecialFolders::myApplicationResourcePath(&main));
    EXPECT_EQ(SpecialFolders::myApplicationFrameworkPath(nullptr),
              SpecialFolders::myApplicationFrameworkPath(&main));
    EXPECT_EQ(SpecialFolders::myApplicationExecutionPath(nullptr),
              SpecialFolders::myApplicationExecutionPath(&main));
}

TEST_F(SpecialFolder, OnesOfAModuleAreItsBundles) {
    const std::string path = home / "Plug-ins/Some.bundle";
    fs::create_directories(path + "/Contents/Resources");
    fs::create_directories(path + "/Contents/Frameworks");
    const ModuleMac module(
        static_cast<void*>([NSBundle bundleWithPath:[NSString stringWithUTF8String:path.c_str()]]));
    EXPECT_EQ(text(SpecialFolders::myApplicationResourcePath(&module)),
              path + "/Contents/Resources");
    EXPECT_EQ(text(SpecialFolders::myApplicationFrameworkPath(&module)),
              path + "/Contents/Frameworks");
    EXPECT_EQ(text(SpecialFolders::myApplicationExecutionPath(&module)), home / "Plug-ins");
    EXPECT_EQ(text(SpecialFolders::myProfilesPath(&module)),
              text(SpecialFolders::myApplicationFrameworkPath(&module)) + "/Profiles");
}

}  // namespace
}  // namespace tav::ula

int main(int argumentCount, char** arguments) {
    if (argumentCount == 2 && std::string(arguments[1]) == "--answers") {
        tav::ula::printAnswers();
        return 0;
    }
    testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
