// SPDX-License-Identifier: MIT
// Real applications that move: as a user who needs an administrator's rights for it, from disk
// images, and in other languages.
#include "tests/Mac/MoveFixture.h"
#include "tests/support/Patience.h"

#include <fcntl.h>
#include <sys/inotify.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;
using testing::ElementsAre;

constexpr const char* kName = "Photo Box.app";
constexpr const char* kPassword = " Note that this will require an administrator password.";
constexpr const char* kRights = "rights: system.privilege.admin, flags 19";
constexpr const char* kNoCopy =
    "log: ERROR -- Could not copy myself to /Applications with authorization";

class MovingWithPrivileges : public MoveFixture {
protected:
    MovingWithPrivileges() { becomeOrdinaryUser(); }

    Run run(const std::string& bundle, const std::string& answers, const std::string& user) {
        return MoveFixture::run(bundle, answers, {{"ULA_TEST_PKEXEC", user}});
    }
    std::string removal() const { return "privileged: /bin/rm | -rf | " + destination; }
    std::string copy(const std::string& bundle) const {
        return "privileged: /bin/cp | -pR | " + bundle + " | " + destination;
    }

    const std::string destination = applications + "/" + kName;
};

TEST_F(MovingWithPrivileges, AnExistingApplicationIsReplacedWithoutAQuestion) {
    fs::create_directories(destination);
    writeFile(destination + "/old", "old");
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0", "grant");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine, kPassword), kMoving, kRights,
                            removal(), copy(bundle), relaunch("SELF", destination)));
    EXPECT_EQ(result.exitCode, 0);
    expectOpened(destination);
    EXPECT_FALSE(fs::exists(destination + "/old"));
    EXPECT_FALSE(fs::exists(bundle));
    EXPECT_THAT(trashed(), ElementsAre(kName));
}

TEST_F(MovingWithPrivileges, FromDownloadsThereIsTheAdministratorsNoteAlone) {
    const std::string bundle = install("home/Downloads");
    EXPECT_THAT(run(bundle, "1", "grant").lines,
                ElementsAre("started " + bundle, question(kToMachine, kPassword), "returned"));
}

TEST_F(MovingWithPrivileges, ACancelledAuthorizationIsNoFailure) {
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0", "cancel");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine, kPassword), kMoving, kRights,
                            "log: INFO -- Not moving because user canceled authorization",
                            "returned"));
    EXPECT_EQ(result.exitCode, 7);
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(MovingWithPrivileges, WithNobodyToAskForThePasswordItFails) {
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0", "nobody");
    EXPECT_THAT(result.lines, ElementsAre("started " + bundle, question(kToMachine, kPassword),
                                          kMoving, kRights, kNoCopy, kFailed, "returned"));
    EXPECT_TRUE(fs::exists(bundle));
}

TEST_F(MovingWithPrivileges, TheSourceIsIntactWhenTheCopyFails) {
    const BoundItem readOnly(folder / "machine", applications, true);
    const std::string bundle = install("desk");
    const Run result = run(bundle, "0 0", "grant");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine, kPassword), kMoving, kRights,
                            removal(), copy(bundle), kNoCopy, kFailed, "returned"));
    EXPECT_TRUE(fs::exists(bundle + "/Contents/Info.plist"));
    EXPECT_THAT(trashed(), ElementsAre());
}

TEST_F(MovingWithPrivileges, HostileNamesRunNothing) {
    fs::current_path("/");
    const std::string name = "b'; touch six; '$(touch seven)`touch eight`";
    const std::string bundle = install("desk", name);
    EXPECT_EQ(run(bundle, "0", "grant").exitCode, 0);
    expectOpened(applications + "/" + name + ".app");
    for (const char* made : {"/six", "/seven", "/eight"})
        EXPECT_FALSE(fs::exists(made));
}

class MovingFromImages : public MoveFixture {
protected:
    /// An image with the application, mounted where desktops mount, with a name in /Volumes.
    std::string mountImage(const std::string& options) {
        const std::string point = folder / "media/Disk";
        const std::string bundle = install("desk");
        _image = folder / "image";
        fs::create_directories(point);
        const std::string mount = " '" + _image + "' '" + point + "'";
        run("truncate -s 24M '" + _image + "' && mkfs.ext4 -q '" + _image + "'");
        run("mount -o loop" + mount);
        fs::copy(bundle, point + "/" + kName, fs::copy_options::recursive);
        run("umount '" + point + "' && mount -o " + options + mount);
        fs::create_directory_symlink(point, "/Volumes/Disk");
        return "/Volumes/Disk/" + std::string(kName);
    }
    static void run(const std::string& command) {
        if (std::system(command.c_str()) != 0)
            throw std::runtime_error("fails: " + command);
    }
    using MoveFixture::run;
    ~MovingFromImages() override {
        fs::remove("/Volumes/Disk");
        [[maybe_unused]] const int result =
            std::system(("umount -q '" + (folder / "media/Disk") + "'").c_str());
    }
    bool isMounted() const {
        return readFile("/proc/self/mounts").find(" " + (folder / "media/Disk") + " ") !=
               std::string::npos;
    }

    /// Fails: false.
    static bool waitFor(int descriptor, short event) {
        pollfd change = {descriptor, event, 0};
        return poll(&change, 1, kPatienceMs) > 0;
    }

    std::string _image;
};

TEST_F(MovingFromImages, AReadOnlyImageIsDetachedAndNothingOfItIsTrashed) {
    const std::string bundle = mountImage("ro,loop");
    const int table = open("/proc/self/mounts", O_RDONLY | O_CLOEXEC);
    const int closed = inotify_init1(IN_CLOEXEC | IN_NONBLOCK);
    inotify_add_watch(closed, _image.c_str(), IN_CLOSE);
    const Run result = run(bundle, "0");
    EXPECT_THAT(result.lines,
                ElementsAre("started " + bundle, question(kToMachine), kMoving,
                            relaunch("SELF", applications + "/" + kName),
                            "task: /bin/sh | -c | (sleep 5 && hdiutil detach '/Volumes/Disk') &"));
    EXPECT_EQ(result.exitCode, 0);
    expectOpened(applications + "/" + kName);
    EXPECT_THAT(trashed(), ElementsAre());
    while (isMounted())
        ASSERT_TRUE(waitFor(table, POLLPRI));
    // The kernel closes the image when its loop device is free.
    ASSERT_TRUE(waitFor(closed, POLLIN));
    const std::string loops = "losetup -j '" + _image + "' | grep -q .";
    EXPECT_NE(std::system(loops.c_str()), 0);
    close(table);
    close(closed);
}

TEST_F(MovingFromImages, AWritableImageStaysAndTheOldCopyIsTrashed) {
    const std::string bundle = mountImage("rw,loop");
    const Run result = run(bundle, "0");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.lines.back(), relaunch("SELF", applications + "/" + kName));
    expectOpened(applications + "/" + kName);
    EXPECT_FALSE(fs::exists(folder / "media/Disk/Photo Box.app"));
    EXPECT_TRUE(isMounted());
}

class MovingInOtherLanguages : public MoveFixture {
protected:
    Run runWith(Variables variables, const std::string& answers) {
        variables.emplace("MOVE_CATALOGUES", ULA_CATALOGUES);
        return run(install("desk"), answers, variables);
    }
};

TEST_F(MovingInOtherLanguages, TheGermanAlertSpeaksGerman) {
    const std::string command = "localedef -i de_DE -f UTF-8 '" + (folder / "de_DE.UTF-8") + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    EXPECT_EQ(
        runWith({{"LOCPATH", folder.path().string()}, {"LC_ALL", "de_DE.UTF-8"}}, "1").lines[1],
        "alert: \"In den Ordner \u201eProgramme\u201c bewegen?\" \"Diese Version des Programms "
        "wird nicht aus dem Ordner \u201eProgramme\u201c ausgef\u00fchrt. M\u00f6chten Sie diese "
        "Version in den Ordner \u201eProgramme\u201c bewegen?\" [In den Ordner "
        "\u201eProgramme\u201c bewegen (Return)] [Nicht bewegen (Escape)] < small Diese Meldung "
        "nicht mehr anzeigen>");
}

TEST_F(MovingInOtherLanguages, EveryTextHasATranslation) {
    fs::create_directories(applications + "/" + kName);
    for (const char* language : {"de", "es", "fr", "ja"}) {
        // Over a locale that every system has.
        const Run result = runWith({{"LC_ALL", "C.UTF-8"}, {"LANGUAGE", language}}, "0 1");
        ASSERT_EQ(result.lines.size(), 4u) << language;
        for (const std::string& alert : {result.lines[1], result.lines[3]})
            for (const char* text :
                 {"Move to", "Do Not", "folder", "Continue (", "Cancel (", "show"})
                EXPECT_EQ(alert.find(text), std::string::npos) << alert;
        EXPECT_EQ(result.lines[2], kMoving);
        fs::remove_all(folder / "desk");
    }
}

}  // namespace
