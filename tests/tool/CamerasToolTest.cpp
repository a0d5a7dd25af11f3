// SPDX-License-Identifier: MIT
// A camera on the network and cards on disk images. Needs root: mounts in a space of its own.
#include "tests/support/Mounts.h"
#include "tests/support/Patience.h"
#include "tests/support/Picture.h"
#include "tests/support/PtpResponder.h"
#include "tests/tool/ToolProcess.h"

#include <csignal>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class CamerasTool : public ToolTest {
protected:
    CamerasTool() {
        fs::create_directories(folder.path() / "camera/DCIM/100TEST");
        setenv("HOME", folder.path().c_str(), 1);
        setenv("TZ", "UTC", 1);
        write("camera/DCIM/100TEST/IMG_1.JPG", picture("2009:03:15 10:20:30", 5000, 1));
        write("camera/DCIM/100TEST/IMG_2.JPG", picture("2009:03:16 10:20:30", 3'000'000, 2));
        for (const char* name : {"IMG_1.JPG", "IMG_2.JPG"})
            fs::last_write_time(folder.path() / "camera/DCIM/100TEST" / name,
                                fs::file_time_type::clock::from_sys(
                                    std::chrono::sys_seconds(std::chrono::seconds(1'237'112'430))));
    }
    ToolResult cameras(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "cameras");
        return run(arguments);
    }
    /// With the camera on the network.
    ToolResult onCamera(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--network", camera().address()});
        return cameras(arguments);
    }
    PtpResponder& camera() {
        if (!responder)
            responder = std::make_unique<PtpResponder>(folder / "camera");
        return *responder;
    }

    std::unique_ptr<PtpResponder> responder;
};

TEST_F(CamerasTool, NothingConnectedIsSaidWithWhatToDo) {
    const std::string errors =
        "ula: no camera and no memory card is connected\n"
        "     switch the camera on and choose its transfer mode; a card has to be mounted "
        "and have a folder DCIM\n";
    expectResult(cameras({}), 1, "", errors);
    expectResult(cameras({"--json"}), 1, "{\n  \"version\": 1,\n  \"devices\": []\n}\n", errors);
}

TEST_F(CamerasTool, ListsWhatIsConnected) {
    const ToolResult result = onCamera({"list"});
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("camera  Camera at " + camera().address() + "\n"));
}

TEST_F(CamerasTool, ListsFilesWithSizesAndDates) {
    const ToolResult result = onCamera({"files"});
    EXPECT_EQ(result.code, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("5.0 kB     2009-03-15 10:20:30  "));
    EXPECT_THAT(result.output, HasSubstr("DCIM/100TEST/IMG_1.JPG\n"));
    EXPECT_THAT(onCamera({"files", "--json"}).output,
                HasSubstr("\"name\":\"IMG_2.JPG\",\"size\":3000000,\"modified\":1237112430}\n"));
}

TEST_F(CamerasTool, ImportsWhatIsNotThereYet) {
    expectResult(onCamera({"import", "Pictures"}), 0, "2 imported (3.0 MB), 0 already there\n", "");
    EXPECT_TRUE(read("Pictures/IMG_2.JPG") == picture("2009:03:16 10:20:30", 3'000'000, 2));
    expectResult(onCamera({"import", "Pictures"}), 0, "0 imported (0 bytes), 2 already there\n",
                 "");
}

TEST_F(CamerasTool, ImportsByNameIntoFoldersOfDays) {
    expectResult(
        onCamera({"import", "Pictures", "--name", "IMG_1.JPG", "--dates", "%Y/%m-%d", "--verify"}),
        0, "1 imported (5.0 kB), 0 already there\n", "");
    EXPECT_TRUE(fs::exists(folder / "Pictures/2009/03-15/IMG_1.JPG"));
}

TEST_F(CamerasTool, FoldersNamesAndDatesMayBeginWithBrackets) {
    fs::rename(folder.path() / "camera/DCIM/100TEST/IMG_1.JPG",
               folder.path() / "camera/DCIM/100TEST/[1].JPG");
    const ToolResult result =
        onCamera({"import", "[New]", "--name", "[1].JPG", "--dates", "[%Y]", "--json"});
    EXPECT_THAT(result.output, HasSubstr("\"path\":\"[New]/[2009]/[1].JPG\""));
}

TEST_F(CamerasTool, TellsEachFileAsJson) {
    const ToolResult result = onCamera({"import", "Pictures", "--name", "IMG_1.JPG", "--json"});
    EXPECT_THAT(
        result.output,
        HasSubstr("\"result\":\"imported\",\"path\":\"Pictures/IMG_1.JPG\",\"error\":\"\"}"));
}

TEST_F(CamerasTool, CameraThatHangsUpIsAFailureThatTheNextCommandMends) {
    PtpFaults faults;
    faults.hangsUpAfter = 100'000;
    camera().setFaults(faults);
    const ToolResult result = onCamera({"import", "Pictures"});
    EXPECT_EQ(result.code, 3);
    EXPECT_THAT(result.output, HasSubstr("1 failed\n"));
    EXPECT_THAT(result.errors, HasSubstr("IMG_2.JPG: cannot read"));
    EXPECT_FALSE(fs::exists(folder / "Pictures/IMG_2.JPG"));
    camera().setFaults({});
    EXPECT_EQ(onCamera({"import", "Pictures"}).output, "1 imported (3.0 MB), 1 already there\n");
}

TEST_F(CamerasTool, FolderThatCannotBeWrittenIsSaid) {
    write("Pictures", "a file");
    const ToolResult result = onCamera({"import", "Pictures"});
    EXPECT_EQ(result.code, 4);
    EXPECT_THAT(result.errors, HasSubstr("cannot write \"Pictures\""));
}

TEST_F(CamerasTool, UnknownDevicesAndAddressesAreRefused) {
    EXPECT_EQ(onCamera({"files", "--device", "x"}).code, 1);
    expectResult(cameras({"--network", "a b"}), 2, "",
                 "ula: \"a b\" is no camera's address\n"
                 "     write it like 192.168.1.20 or camera.local:15740\n");
}

TEST_F(CamerasTool, SeveralDevicesHaveToBeChosenFrom) {
    MountedImage card("/Volumes/Card", folder.path());
    fs::create_directories(card.point() + "/DCIM/100CARD");
    writeFile(card.point() + "/DCIM/100CARD/IMG_3.JPG", picture());
    // A card has two seconds to answer, which a busy machine may not give it.
    const auto isListed = testing::Matches(HasSubstr("100CARD/IMG_3.JPG\n"));
    EXPECT_TRUE(comesTrue([&] { return onCamera({"files"}).code == 2; }));
    EXPECT_TRUE(comesTrue([&] {
        return isListed(onCamera({"files", "--device", "Card"}).output);
    }));
    EXPECT_TRUE(comesTrue([&] { return isListed(cameras({"files"}).output); }));
}

TEST_F(CamerasTool, CtrlCEndsAnImportAndTheNextCommandGoesOn) {
    // Silent in the middle of the second picture: the import is still running.
    PtpFaults faults;
    faults.fallsSilentAfter = 100'000;
    camera().setFaults(faults);
    RunningTool tool(folder.path().string(),
                     {"cameras", "import", "Pictures", "--network", camera().address()});
    ASSERT_TRUE(camera().waitForTransfers(2));
    tool.signal(SIGINT);
    EXPECT_NE(tool.wait(), 0);
    EXPECT_FALSE(fs::exists(folder / "Pictures/IMG_2.JPG"));
    camera().setFaults({});
    EXPECT_EQ(onCamera({"import", "Pictures"}).code, 0);
    EXPECT_EQ(read("Pictures/IMG_2.JPG").size(), 3'000'000u);
}

}  // namespace

}  // namespace tav::test
