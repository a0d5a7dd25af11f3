// SPDX-License-Identifier: MIT
// ula drives. Needs root: mounts in a space of its own.
#include "tests/tool/ToolProcess.h"

#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"

#include <cstdlib>
#include <filesystem>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class DrivesTool : public ToolTest {
protected:
    DrivesTool() { fs::create_directory(folder / "images"); }
    ~DrivesTool() override {
        for (const auto& entry : fs::directory_iterator("/Volumes"))
            if (entry.path().filename() != "Linux")
                fs::remove(entry.path());
    }
    /// Disks have a fraction of a second to answer, which a busy machine may not give them.
    template <class Matcher>
    void expectListed(const std::vector<std::string>& arguments, const Matcher& matcher) {
        const testing::Matcher<const std::string&> right(matcher);
        EXPECT_THAT(askUntil([&] { return run(arguments).output; }, testing::Matches(right)),
                    right);
    }
    std::string place(const std::string& name) const {
        return fs::canonical(folder.path()).string() + "/" + name;
    }
};

TEST_F(DrivesTool, ListsTheStartUpDiskWithItsSize) {
    EXPECT_EQ(run({"drives"}).code, 0);
    EXPECT_THAT(run({"drives"}).output, StartsWith("NAME "));
    expectListed({"drives"}, ContainsRegex("\nLinux +fixed +[0-9.]+ [kMGTP]B +[0-9.]+ "
                                           "([kMGTP]?B|bytes) +[^ ]+ +/\n"));
}

TEST_F(DrivesTool, ListsAnImageAndSaysWhenItIsReadOnly) {
    const MountedImage image("/Volumes/My Disk", folder / "images", "x", "loop,ro");
    expectListed({"drives"}, ContainsRegex("\nMy Disk +virtual +[0-9.]+ MB +[0-9.]+ MB +ext4 "
                                           "+/Volumes/My Disk \\(read-only\\)\n"));
}

TEST_F(DrivesTool, ColumnsStandUnderEachOther) {
    const MountedMemory memory("/Volumes/Gr\u00fcn");
    const std::string output = run({"drives"}).output;
    const std::size_t kind = output.find("KIND");
    const std::string line = output.substr(output.find("Gr\u00fcn"));
    // One byte more than columns.
    EXPECT_EQ(line.find("virtual"), kind + 1);
}

TEST_F(DrivesTool, ListsAShareThatDoesNotAnswer) {
    const WithoutLeakCheck noLeakCheck;
    const DeadShare share(place("share"));
    fs::create_symlink(share.point(), "/Volumes/Share");
    EXPECT_THAT(run({"drives"}).output, ContainsRegex("\nShare +network +no answer +fuse.sshfs"));
    EXPECT_THAT(run({"drives", "--json"}).output, HasSubstr("\"kind\": \"network\",\n"
                                                            "      \"size\": null"));
}

TEST_F(DrivesTool, JsonHasEverything) {
    const MountedImage image(place("disk"), folder / "images", "Holiday");
    fs::create_symlink(image.point(), "/Volumes/Disk");
    expectListed({"drives", "--json"},
                 testing::AllOf(
                     HasSubstr("\"name\": \"Disk\""), HasSubstr("\"path\": \"/Volumes/Disk\""),
                     HasSubstr("\"kind\": \"virtual\""), HasSubstr("\"fileSystem\": \"ext4\""),
                     HasSubstr("\"readOnly\": false"),
                     HasSubstr("\"mountedOn\": \"" + image.point() + "\""),
                     HasSubstr("\"label\": \"Holiday\""),
                     HasSubstr("\"device\": \"" + image.device() + "\""),
                     HasSubstr("\"url\": \"file://" + image.point() + "/\""),
                     ContainsRegex("\"uuid\": \"[0-9a-f-]+\""), ContainsRegex("\"size\": [0-9]+")));
}

TEST_F(DrivesTool, NamesCannotSteerTheTerminal) {
    const MountedMemory memory("/Volumes/new\nline\x1b[31m");
    EXPECT_THAT(run({"drives"}).output, HasSubstr("\nnew\\nline\\u001b[31m "));
}

TEST_F(DrivesTool, VolumeWithoutANameIsToldOfWithWhatHelps) {
    const MountedImage image(place("nameless"), folder / "images");
    const ToolResult result = run({"drives"});
    EXPECT_EQ(result.code, 0);
    EXPECT_THAT(result.output, Not(HasSubstr("nameless")));
    EXPECT_THAT(result.errors, HasSubstr(image.point()));
    EXPECT_THAT(result.errors, HasSubstr("'sudo ula volumes --mend' gives them names"));
}

TEST_F(DrivesTool, VolumesWithoutANameAreToldOfAfterTheTable) {
    const MountedImage image(place("nameless"), folder / "images");
    RunningTool tool(folder.path().string(), {"drives"});
    EXPECT_TRUE(tool.waitForLine("     'sudo ula volumes --mend' gives them names"));
    EXPECT_THAT(tool.seen(), ContainsRegex("Linux .*\nula: not listed"));
}

TEST_F(DrivesTool, UnknownOptionIsWrongUsage) {
    EXPECT_EQ(run({"drives", "--none"}).code, 2);
    EXPECT_EQ(run({"drives", "extra"}).code, 2);
}

}  // namespace

}  // namespace tav::test
