// SPDX-License-Identifier: MIT
// The machine's list, and places that cannot be written to. Needs root.
#include "tests/Mac/PListFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"

#include <unistd.h>

namespace tav::ula {
namespace {

using testing::HasSubstr;

class SettingsPListPlacesTest : public PListFixture {
protected:
    SettingsPListPlacesTest() {
        // Of the tests' user, who is nobody at times.
        std::filesystem::permissions(home.path(), std::filesystem::perms(0755));
    }
    ~SettingsPListPlacesTest() override {
        if (!_hadLibrary)
            rmdir("/Library");
    }
    template <class Ask>
    static std::string asNobody(const Ask& ask) {
        return test::runInChild([&] {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                return std::string("still root");
            return std::string(ask());
        });
    }

private:
    const bool _hadLibrary = std::filesystem::exists("/Library");
};

TEST_F(SettingsPListPlacesTest, TheMachinesListIsAnotherThanTheUsers) {
    const test::MountedMemory library("/Library");
    open()->setGeneric("G", "K", 1);
    {
        SettingsPList machine("Viewer", "Acme", false);
        EXPECT_FALSE(machine.containsValue("G", "K"));
        machine.setGeneric("G", "K", 2);
    }
    EXPECT_THAT(test::readFile("/Library/Preferences/com.Acme.Viewer.plist"),
                HasSubstr("<integer>2</integer>"));
    EXPECT_EQ(SettingsPList("Viewer", "Acme", false).getInt("G", "K", 0), 2);
    EXPECT_EQ(open()->getInt("G", "K", 0), 1);
}

TEST_F(SettingsPListPlacesTest, TheMachinesListIsNotForEveryUserToWrite) {
    const test::MountedMemory library("/Library");
    std::filesystem::permissions("/Library", std::filesystem::perms(0755));
    EXPECT_THAT(asNobody([] {
                    SettingsPList settings("Viewer", "Acme", false);
                    settings.setGeneric("G", "K", 1);
                    return settings.write() ? "written" : settings.lastError();
                }),
                HasSubstr("/Library/Preferences"));
    EXPECT_FALSE(std::filesystem::exists("/Library/Preferences/com.Acme.Viewer.plist"));
}

TEST_F(SettingsPListPlacesTest, AFileThatCannotBeKeptAsideIsNotReplaced) {
    writeList("<plist>");
    chown(path.c_str(), 65534, 65534);
    EXPECT_THAT(asNobody([] {
                    SettingsPList settings("Viewer", "Acme", true);
                    settings.setGeneric("G", "K", 1);
                    return settings.write() ? "written" : settings.lastError();
                }),
                HasSubstr("it could not be kept aside"));
    EXPECT_EQ(test::readFile(path), "<plist>");
    // Once it can, it is.
    open()->setGeneric("G", "K", 1);
    EXPECT_EQ(namesBeside().size(), 2U);
    EXPECT_EQ(open()->getInt("G", "K", 0), 1);
}

TEST_F(SettingsPListPlacesTest, AFileThatMayNotBeReadIsLeftAlone) {
    writeRoot(groupOf("<key>K</key><integer>7</integer>"));
    std::filesystem::permissions(path, std::filesystem::perms(0600));
    EXPECT_THAT(asNobody([] {
                    SettingsPList settings("Viewer", "Acme", true);
                    return settings.read() ? "read" : settings.lastError();
                }),
                HasSubstr("cannot be read"));
    EXPECT_EQ(open()->getInt("G", "K", 0), 7);
}

}  // namespace
}  // namespace tav::ula
