// SPDX-License-Identifier: MIT
#include "tests/reliability/support/MarkedSettings.h"
#include "tests/reliability/support/SaveProblems.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using ula::FastString;
using ula::SettingsXML;

constexpr uid_t kNobody = 65534;

/// Permissions do not bind root: the child becomes somebody whom they bind.
bool becomeUnprivileged() {
    return geteuid() != 0 ||
           (setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
            setresuid(kNobody, kNobody, kNobody) == 0);
}

class UnwritablePlace : public testing::Test {
protected:
    void SetUp() override {
        fs::permissions(_folder.path(), fs::perms::all);
        _before.folder = _folder.path().string();
        _before.path = _folder / "settings.xml";
    }

    void makeOldFile() {
        _before.bytes = textWithMark(1);
        writeFile(_before.path, *_before.bytes);
        if (geteuid() == 0)
            ASSERT_EQ(chown(_before.path.c_str(), kNobody, kNobody), 0);
    }

    std::string problemsOfSavingTo(const std::string& path) {
        SettingsXML settings("Reliability", "Tests", FastString(path), false);
        fillWithMark(settings, 2);
        return problemsOfFailingSave(_before, settings);
    }

    std::string problemsAsNobody() {
        return runInChild([&] {
            return becomeUnprivileged() ? problemsOfSavingTo(_before.path)
                                        : std::string("cannot become another user");
        });
    }

    TemporaryFolder _folder;
    Before _before;
};

TEST_F(UnwritablePlace, ReadOnlyFolder) {
    makeOldFile();
    fs::permissions(_folder.path(), fs::perms(0555));
    EXPECT_EQ(problemsAsNobody(), "");
    fs::permissions(_folder.path(), fs::perms::all);
}

TEST_F(UnwritablePlace, FolderThatMayNotBeEntered) {
    const std::string inner = _folder / "closed";
    fs::create_directory(inner);
    fs::permissions(inner, fs::perms(0700));
    _before.folder = inner;
    _before.path = inner + "/settings.xml";
    if (geteuid() != 0)
        fs::permissions(inner, fs::perms::none);
    EXPECT_EQ(problemsAsNobody(), "");
    fs::permissions(inner, fs::perms(0700));
}

TEST_F(UnwritablePlace, ReadOnlyFileInAWritableFolder) {
    makeOldFile();
    fs::permissions(_before.path, fs::perms(0444));
    EXPECT_EQ(problemsAsNobody(), "");
}

TEST_F(UnwritablePlace, WritableFolderIsGoodForTheSameUser) {
    makeOldFile();
    EXPECT_EQ(runInChild([&] {
                  if (!becomeUnprivileged())
                      return std::string("cannot become another user");
                  SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
                  fillWithMark(settings, 2);
                  return problemsOfSave(_before, settings, 2, [&] { return settings.write(); }) +
                         othersIn(_before);
              }),
              "");
}

TEST_F(UnwritablePlace, MissingFolder) {
    EXPECT_EQ(problemsOfSavingTo(_folder / "missing/settings.xml"), "");
}

TEST_F(UnwritablePlace, FileInPlaceOfTheFolder) {
    makeOldFile();
    EXPECT_EQ(problemsOfSavingTo(_before.path + "/settings.xml"), "");
}

TEST_F(UnwritablePlace, FolderInPlaceOfTheFile) {
    const std::string path = _folder / "inner";
    fs::create_directory(path);
    _before.path = path;
    EXPECT_EQ(problemsOfSavingTo(path), "");
    EXPECT_EQ(problemsOfSavingTo(path + "/"), "");
    EXPECT_TRUE(fs::is_directory(path));
}

TEST_F(UnwritablePlace, LoopOfSymbolicLinks) {
    fs::create_symlink("b.xml", _folder / "a.xml");
    fs::create_symlink("a.xml", _folder / "b.xml");
    SettingsXML settings("Reliability", "Tests", FastString(_folder / "a.xml"), false);
    fillWithMark(settings, 2);
    EXPECT_FALSE(settings.write());
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"a.xml", "b.xml"}));
    EXPECT_TRUE(fs::is_symlink(_folder / "a.xml"));
}

TEST_F(UnwritablePlace, LinkIntoAMissingFolder) {
    fs::create_symlink("missing/settings.xml", _folder / "link.xml");
    _before.path = _folder / "link.xml";
    EXPECT_EQ(problemsOfSavingTo(_before.path), "");
    EXPECT_TRUE(fs::is_symlink(_before.path));
}

TEST_F(UnwritablePlace, LinkToAFileIsGoodAndStays) {
    makeOldFile();
    fs::create_directory(_folder / "links");
    fs::create_symlink("../settings.xml", _folder / "links/link.xml");
    SettingsXML settings("Reliability", "Tests", FastString(_folder / "links/link.xml"), false);
    fillWithMark(settings, 2);
    EXPECT_EQ(problemsOfSave(_before, settings, 2, [&] { return settings.write(); }), "");
    EXPECT_TRUE(fs::is_symlink(_folder / "links/link.xml"));
    EXPECT_EQ(_folder.names(), (std::vector<std::string>{"links", "settings.xml"}));
}

TEST_F(UnwritablePlace, DeviceOrPipeInPlaceOfTheFile) {
    _before.path = _folder / "pipe";
    ASSERT_EQ(mkfifo(_before.path.c_str(), 0666), 0);
    SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
    EXPECT_FALSE(settings.write());
    EXPECT_TRUE(fs::is_fifo(_before.path));
    SettingsXML device("Reliability", "Tests", FastString("/dev/full"), false);
    EXPECT_FALSE(device.write());
    EXPECT_TRUE(fs::is_character_file("/dev/full"));
    EXPECT_EQ(othersIn(_before), "");
}

TEST_F(UnwritablePlace, NameThatNoFileCanHave) {
    for (const std::string& name : {std::string(256, 'n'), std::string("a\0b", 3)})
        EXPECT_EQ(problemsOfSavingTo(_folder / name), "") << name;
    EXPECT_EQ(problemsOfSavingTo(""), "");
}

TEST_F(UnwritablePlace, LongestNameIsGood) {
    _before.path = _folder / std::string(255, 'n');
    SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
    fillWithMark(settings, 2);
    const auto write = [&] { return settings.write(); };
    EXPECT_EQ(problemsOfSave(_before, settings, 2, write) + othersIn(_before), "");
    EXPECT_EQ(problemsOfSave(_before, settings, 2, write) + othersIn(_before), "");
}

TEST_F(UnwritablePlace, FileBeyondTheProcessLimit) {
    makeOldFile();
    for (const rlim_t limit : {0U, 1U, 30000U})
        EXPECT_EQ(runInChild([&] {
                      signal(SIGXFSZ, SIG_IGN);
                      const rlimit given{limit, limit};
                      setrlimit(RLIMIT_FSIZE, &given);
                      return problemsOfSavingTo(_before.path);
                  }),
                  "")
            << limit;
}

TEST_F(UnwritablePlace, NoDescriptorFree) {
    makeOldFile();
    EXPECT_EQ(runInChild([&] {
                  SettingsXML settings("Reliability", "Tests", FastString(_before.path), false);
                  fillWithMark(settings, 2);
                  return problemsOfFailingSave(_before, settings, [&] {
                      rlimit limit{};
                      getrlimit(RLIMIT_NOFILE, &limit);
                      const rlimit none{3, limit.rlim_max};
                      setrlimit(RLIMIT_NOFILE, &none);
                      const bool done = settings.write();
                      setrlimit(RLIMIT_NOFILE, &limit);
                      return done;
                  });
              }),
              "");
}

}  // namespace

}  // namespace tav::test
