// SPDX-License-Identifier: MIT
#include "tests/support/ChildProcess.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TemporaryFolder.h"
#include "ula/SettingsException.h"
#include "ula/SettingsXML.h"

#include <functional>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::ula {
namespace {

using test::readFile;
using test::TemporaryFolder;
using test::writeFile;
using testing::ElementsAre;
using testing::MatchesRegex;

constexpr const char* kBroken = "<settings><group";

class UnreadableFileTest : public testing::Test {
protected:
    TemporaryFolder folder;
    std::string path = folder / "s.xml";

    /// What somebody says who may replace the file but not read it, and so cannot copy it.
    std::string asStranger(const std::function<std::string(SettingsXML&)>& act) const {
        return test::runInChild([&] {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                return std::string("still root");
            const test::LogCapture quiet;
            SettingsXML settings("App", "Company", FastString(path), false);
            return act(settings);
        });
    }
};

TEST_F(UnreadableFileTest, AFileThatCannotBeParsedAtConstructionIsKeptAside) {
    writeFile(path, kBroken);
    SettingsXML settings("App", "Company", FastString(path), false);
    const auto names = folder.names();
    ASSERT_EQ(names.size(), 2U);
    EXPECT_THAT(names[1], MatchesRegex("s\\.xml\\.corrupt-[0-9]+T[0-9]+Z"));
    EXPECT_EQ(readFile(folder / names[1]), kBroken);
    EXPECT_THAT(settings.lastError(),
                testing::EndsWith("; kept aside as \"" + (folder / names[1]) + "\""));
    EXPECT_TRUE(settings.write());
    EXPECT_EQ(readFile(folder / names[1]), kBroken);
    EXPECT_NE(readFile(path), kBroken);
}

TEST_F(UnreadableFileTest, AFileThatIsNoSettingsFileIsKeptAsideToo) {
    writeFile(path, "<settings><odd/></settings>");
    EXPECT_THROW(SettingsXML("App", "Company", FastString(path), true), SettingsException);
    EXPECT_EQ(folder.names().size(), 2U);
    EXPECT_EQ(readFile(path), "<settings><odd/></settings>");
}

TEST_F(UnreadableFileTest, TheSameBytesAreKeptOnce) {
    writeFile(path, kBroken);
    for (int i = 0; i < 3; ++i)
        SettingsXML("App", "Company", FastString(path), false);
    EXPECT_EQ(folder.names().size(), 2U);
    writeFile(path, "<other");
    SettingsXML("App", "Company", FastString(path), false);
    EXPECT_EQ(folder.names().size(), 3U);
}

TEST_F(UnreadableFileTest, AReadableOrMissingFileIsNotKept) {
    SettingsXML("App", "Company", FastString(path), false);
    EXPECT_THAT(folder.names(), testing::IsEmpty());
    writeFile(path, "<settings/>");
    SettingsXML("App", "Company", FastString(path), false);
    EXPECT_THAT(folder.names(), ElementsAre("s.xml"));
}

TEST_F(UnreadableFileTest, NothingIsOverwrittenThatCouldNotBeKept) {
    writeFile(path, kBroken);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(path.c_str(), 0200), 0);
    EXPECT_EQ(asStranger([](SettingsXML& settings) {
                  return settings.write() ? std::string("written") : std::string("refused");
              }),
              "refused");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    EXPECT_EQ(readFile(path), kBroken);
}

TEST_F(UnreadableFileTest, EveryRefusedWriteGivesTheSameReason) {
    writeFile(path, kBroken);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(path.c_str(), 0200), 0);
    const std::string reason = asStranger([](SettingsXML& settings) {
        const std::string first = settings.lastError();
        settings.write();
        settings.write();
        return first == settings.lastError() ? first : first + " != " + settings.lastError();
    });
    EXPECT_THAT(reason,
                testing::EndsWith("; it could not be kept aside: cannot read \"" + path + "\""));
    EXPECT_THAT(reason, testing::Not(testing::HasSubstr("!=")));
}

TEST_F(UnreadableFileTest, AFileThatWasMendedAndReadIsNotKept) {
    writeFile(path, kBroken);
    ASSERT_EQ(chmod(folder.path().c_str(), 0777), 0);
    ASSERT_EQ(chmod(path.c_str(), 0200), 0);
    EXPECT_EQ(asStranger([this](SettingsXML& settings) {
                  unlink(path.c_str());
                  writeFile(path, "<settings/>");
                  return settings.read() && settings.write() ? std::string("written")
                                                             : settings.lastError();
              }),
              "written");
    EXPECT_THAT(folder.names(), ElementsAre("s.xml"));
}

}  // namespace
}  // namespace tav::ula
