// SPDX-License-Identifier: MIT
#include "ula/ImportSession.h"

#include "tests/Core/FakeImportSource.h"
#include "tests/support/Picture.h"
#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/resource.h>
#include <sys/stat.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using namespace ula;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using Texts = std::vector<std::string>;

constexpr std::int64_t kDate = 1'000'000'000;  // 2001-09-09 in every time zone

/// Of the files that this process writes, while the object lives.
class SizeLimit {
public:
    explicit SizeLimit(rlim_t bytes) : _handler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &_before);
        const rlimit lowered{bytes, _before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &lowered);
    }
    ~SizeLimit() {
        setrlimit(RLIMIT_FSIZE, &_before);
        std::signal(SIGXFSZ, _handler);
    }

private:
    void (*_handler)(int);
    rlimit _before;
};

class Import : public testing::Test {
protected:
    void add(std::uint32_t parent, std::uint32_t number, const std::string& name,
             const std::string& contents, std::int64_t modified = kDate) {
        facts.folders[parent].push_back({number, name, false, contents.size(), modified});
        facts.contents[number] = contents;
    }
    void addFolder(std::uint32_t parent, std::uint32_t number, const std::string& name) {
        facts.folders[parent].push_back({number, name, true, 0, 0});
    }
    std::vector<ImportedFile> import(const ImportOptions& options = {}) {
        return session.import(session.list(), target(), options);
    }
    static std::vector<ImportResult> resultsOf(const std::vector<ImportedFile>& files) {
        std::vector<ImportResult> results;
        for (const ImportedFile& file : files)
            results.push_back(file.result);
        return results;
    }
    std::string target(const std::string& name = "") const { return folder / ("target/" + name); }
    Texts names() const {
        Texts result;
        for (const auto& entry : fs::recursive_directory_iterator(target()))
            if (!entry.is_directory())
                result.push_back(fs::relative(entry.path(), target()).string());
        std::ranges::sort(result);
        return result;
    }

    TemporaryFolder folder;
    FakeImportSource::Facts facts;
    ImportSession session{std::make_unique<FakeImportSource>(facts)};
};

TEST_F(Import, ListComesInPartsAndCanBeEnded) {
    for (std::uint32_t i = 0; i < 1000; ++i)
        add(1, 10 + i, "IMG_" + std::to_string(i), "x");
    addFolder(1, 2, "A");
    std::vector<std::size_t> parts;
    EXPECT_TRUE(session.list([&](const std::vector<ImportObject>& part) {
        parts.push_back(part.size());
        return parts.size() < 2;
    }));
    EXPECT_THAT(parts, ElementsAre(256u, 256u));
    EXPECT_EQ(facts.counted, 1);
}

TEST_F(Import, FolderThatCannotBeReadIsToldAndTheOthersListed) {
    addFolder(1, 2, "A");
    addFolder(1, 3, "B");
    add(2, 10, "a.jpg", "x");
    add(3, 11, "b.jpg", "x");
    facts.unreadable[2] = true;
    const auto objects = session.list();
    ASSERT_EQ(objects.size(), 1u);
    EXPECT_EQ(objects[0].folder + "/" + objects[0].name, "B/b.jpg");
    EXPECT_EQ(session.error(), "it is worn out");
}

TEST_F(Import, FoldersInThemselvesComeToAnEnd) {
    addFolder(1, 1, "A");
    EXPECT_THAT(session.list(), IsEmpty());
    EXPECT_LT(facts.counted, 100);
}

TEST_F(Import, FilesArriveWithTheirDates) {
    add(1, 10, "a.jpg", "picture");
    EXPECT_THAT(resultsOf(import()), ElementsAre(ImportResult::Imported));
    EXPECT_EQ(readFile(target("a.jpg")), "picture");
    struct stat info {};
    ASSERT_EQ(stat(target("a.jpg").c_str(), &info), 0);
    EXPECT_EQ(info.st_mtime, kDate);
}

TEST_F(Import, EmptyFileArrives) {
    add(1, 10, "empty.jpg", "");
    EXPECT_THAT(resultsOf(import({"%Y", true})), ElementsAre(ImportResult::Imported));
    EXPECT_THAT(names(), ElementsAre("2001/empty.jpg"));
}

TEST_F(Import, FilesOfManyPiecesArriveWhole) {
    const std::string bytes = picture("", 3'500'000, 7);
    add(1, 10, "a.jpg", bytes);
    EXPECT_THAT(resultsOf(import({"", true})), ElementsAre(ImportResult::Imported));
    EXPECT_TRUE(readFile(target("a.jpg")) == bytes);
}

TEST_F(Import, WhatIsThereByNameSizeAndDateIsLeftOut) {
    add(1, 10, "a.jpg", "picture");
    import();
    add(1, 11, "b.jpg", "another");
    EXPECT_THAT(resultsOf(import()),
                ElementsAre(ImportResult::AlreadyThere, ImportResult::Imported));
    EXPECT_THAT(names(), ElementsAre("a.jpg", "b.jpg"));
}

TEST_F(Import, OtherFileOfTheNameStaysAndANumberIsAdded) {
    fs::create_directory(target());
    writeFile(target("a.jpg"), "mine, of another size");
    add(1, 10, "a.jpg", "picture");
    const auto files = import();
    EXPECT_EQ(fs::path(files[0].path).filename(), "a-2.jpg");
    EXPECT_EQ(readFile(target("a.jpg")), "mine, of another size");
    EXPECT_THAT(resultsOf(import()), ElementsAre(ImportResult::AlreadyThere));
}

TEST_F(Import, SameNamesOfTwoFoldersAreTwoFilesHoweverAlike) {
    addFolder(1, 2, "A");
    addFolder(1, 3, "B");
    add(2, 10, "a.jpg", "same");
    add(3, 11, "a.jpg", "same");
    import();
    EXPECT_THAT(names(), ElementsAre("a-2.jpg", "a.jpg"));
    EXPECT_THAT(resultsOf(import()),
                ElementsAre(ImportResult::AlreadyThere, ImportResult::AlreadyThere));
}

TEST_F(Import, PicturesGoByTheirShootingDateOthersByTheDateOfTheFile) {
    add(1, 10, "a.jpg", picture("2009:03:15 23:59:59"));
    add(1, 11, "b.mov", "no picture");
    import({"%Y/%m-%d", false});
    EXPECT_THAT(names(), ElementsAre("2001/09-09/b.mov", "2009/03-15/a.jpg"));
}

TEST_F(Import, DateFoldersDoNotLeadOut) {
    add(1, 10, "a.jpg", "x");
    import({"../../%Y/./../x", false});
    EXPECT_THAT(names(), ElementsAre("2001/x/a.jpg"));
}

TEST_F(Import, NamesThatLeadElsewhereFail) {
    for (const char* name : {"../a.jpg", "/tmp/a.jpg", "..", ".hidden", ""})
        add(1, static_cast<std::uint32_t>(10 + facts.contents.size()), name, "x");
    add(1, 99, std::string("a\0b", 3), "x");
    for (const ImportedFile& file : import())
        EXPECT_EQ(file.error, "its name cannot be a file's here");
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(Import, ProgressTellsFilesAndBytes) {
    add(1, 10, "a.jpg", std::string(1'500'000, 'a'));
    add(1, 11, "b.jpg", "b");
    Texts told;
    session.import(session.list(), target(), {}, [&](const ImportProgress& progress) {
        told.push_back(progress.object->name + " " + std::to_string(progress.bytes) + " " +
                       std::to_string(progress.files) + "/" + std::to_string(progress.totalFiles) +
                       " " + std::to_string(progress.doneBytes) + "/" +
                       std::to_string(progress.totalBytes));
    });
    EXPECT_THAT(told, ElementsAre("a.jpg 1048576 0/2 0/1500001", "a.jpg 1500000 0/2 0/1500001",
                                  "a.jpg 0 1/2 1500000/1500001", "b.jpg 1 1/2 1500000/1500001",
                                  "b.jpg 0 2/2 1500001/1500001"));
}

TEST_F(Import, CancelEndsItInTheMiddleOfAFile) {
    add(1, 10, "a.jpg", std::string(3'000'000, 'a'));
    add(1, 11, "b.jpg", "b");
    const auto objects = session.list();
    facts.onRead = [&](std::uint64_t offset) {
        if (offset > 0)
            session.cancel();
    };
    const auto files = session.import(objects, target());
    EXPECT_THAT(resultsOf(files), ElementsAre(ImportResult::Cancelled, ImportResult::Cancelled));
    EXPECT_EQ(files[0].path, "");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Import, FileThatCannotBeReadFailsAndTheNextOneArrives) {
    add(1, 10, "a.jpg", "a");
    add(1, 11, "b.jpg", "b");
    facts.unreadable[10] = true;
    const auto files = import();
    EXPECT_THAT(resultsOf(files), ElementsAre(ImportResult::Failed, ImportResult::Imported));
    EXPECT_EQ(files[0].error, "it is worn out");
    EXPECT_EQ(files[0].failure, ImportFailure::Source);
    EXPECT_EQ(files[1].failure, ImportFailure::None);
}

TEST_F(Import, FileThatIsShorterThanToldFails) {
    add(1, 10, "a.jpg", "abc");
    facts.folders[1][0].size = 2'000'000;
    EXPECT_EQ(import()[0].error, "it is shorter than the device had told");
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Import, DeviceThatGoesFailsTheRestAtOnce) {
    add(1, 10, "a.jpg", "a");
    add(1, 11, "b.jpg", "b");
    const auto objects = session.list();
    int reads = 0;
    facts.onRead = [&](std::uint64_t) { ++reads, facts.isGone = true; };
    for (const ImportedFile& file : session.import(objects, target()))
        EXPECT_EQ(file.error, "it has gone");
    EXPECT_EQ(reads, 1);
}

TEST_F(Import, FolderThatCannotBeMadeIsSaid) {
    writeFile(folder / "target", "a file");
    add(1, 10, "a.jpg", "a");
    const auto files = import();
    EXPECT_THAT(files[0].error, HasSubstr("cannot write"));
    EXPECT_EQ(files[0].failure, ImportFailure::Target);
}

TEST_F(Import, FileThatTheDiskDoesNotTakeIsAFailureOfTheTarget) {
    fs::create_directory_symlink("/proc", folder / "target");
    add(1, 10, "a.jpg", "a");
    EXPECT_EQ(import()[0].failure, ImportFailure::Target);
}

TEST_F(Import, PieceThatTheDiskDoesNotTakeFailsItsFileAlone) {
    const SizeLimit limit(1'200'000);
    add(1, 10, "ends.jpg", std::string(1'300'000, 'a'));
    add(1, 11, "goes on.jpg", std::string(3'000'000, 'b'));
    add(1, 12, "small.jpg", "c");
    const auto files = import();
    EXPECT_THAT(resultsOf(files),
                ElementsAre(ImportResult::Failed, ImportResult::Failed, ImportResult::Imported));
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_THAT(files[i].error, EndsWith(files[i].object.name + "\": File too large"));
        EXPECT_EQ(files[i].failure, ImportFailure::Target);
    }
    EXPECT_THAT(names(), ElementsAre("small.jpg"));
}

TEST_F(Import, WhatTheProgressThrowsEndsItAndLeavesNothing) {
    add(1, 10, "a.jpg", std::string(3'000'000, 'a'));
    const auto throws = [](const ImportProgress&) { throw std::runtime_error("enough"); };
    EXPECT_THROW(session.import(session.list(), target(), {}, throws), std::runtime_error);
    EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Import, FileThatTakesTheNameInTheMeantimeStays) {
    add(1, 10, "a.jpg", "picture");
    const auto objects = session.list();
    facts.onRead = [&](std::uint64_t) {
        if (!fs::exists(target("a.jpg")))
            writeFile(target("a.jpg"), "faster, of another size");
    };
    EXPECT_THAT(resultsOf(session.import(objects, target())), ElementsAre(ImportResult::Imported));
    EXPECT_EQ(readFile(target("a.jpg")), "faster, of another size");
    EXPECT_EQ(readFile(target("a-2.jpg")), "picture");
}

TEST_F(Import, BrokenLinkIsNotWrittenThrough) {
    fs::create_directory(target());
    fs::create_symlink(folder / "elsewhere", target("a.jpg"));
    add(1, 10, "a.jpg", "picture");
    import();
    EXPECT_FALSE(fs::exists(folder / "elsewhere"));
    EXPECT_EQ(readFile(target("a-2.jpg")), "picture");
}

}  // namespace

}  // namespace tav::test
