// SPDX-License-Identifier: MIT
// A camera on the network that speaks the real protocol, on this computer's own.
#include "ImageCaptureCalls.h"
#include "tests/support/Picture.h"
#include "tests/support/PtpResponder.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tav::test {

namespace {

namespace fs = std::filesystem;

CFStringRef text(const std::string& utf8) {
    return reinterpret_cast<CFStringRef>([NSString stringWithUTF8String:utf8.c_str()]);
}

class NetworkCameras : public testing::Test {
protected:
    NetworkCameras() {
        // The drivers keep settings there.
        setenv("HOME", folder.path().c_str(), 1);
        fs::create_directories(folder.path() / "camera/DCIM/100TEST");
        fs::create_directories(folder.path() / "camera/DCIM/101TEST");
        fs::create_directory(folder.path() / "target");
        add("100TEST/IMG_1.JPG", picture("2009:03:15 10:20:30", 300'000, 1));
        add("101TEST/IMG_1.JPG", picture("", 200'000, 2));
        add("101TEST/IMG_2.JPG", picture("", 1000, 3));
    }
    ~NetworkCameras() override {
        if (!address.empty())
            ULANetworkCameraRemove(text(address));
        capture::devices();
        [pool release];
    }

    void add(const std::string& path, const std::string& bytes) {
        writeFile(folder / ("camera/DCIM/" + path), bytes);
    }
    void connect(PtpFaults faults = {}) {
        camera = std::make_unique<PtpResponder>(folder / "camera", faults);
        address = camera->address();
        ASSERT_TRUE(ULANetworkCameraAdd(text(address)));
        device = capture::deviceNamed("Camera at " + address);
        ASSERT_NE(device, 0u);
    }
    std::string problem() {
        for (NSDictionary* facts in capture::devices())
            if ([[facts objectForKey:@"icao"] unsignedIntValue] == device)
                return [[[facts objectForKey:@"ULAProblem"] description] UTF8String];
        return "no such device";
    }
    std::string target(const std::string& name = "") { return folder / ("target/" + name); }

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    TemporaryFolder folder;
    std::string address;
    std::unique_ptr<PtpResponder> camera;
    ICAObject device = 0;
};

TEST_F(NetworkCameras, FilesAreListedAndDownloaded) {
    connect();
    NSDictionary* facts = capture::properties(device);
    EXPECT_EQ([[facts objectForKey:@"ICANumberOfDownloadableObjectsKey"] intValue], 3);
    EXPECT_TRUE([[facts objectForKey:@"ICADeviceTypeKey"] isEqual:@"ICADeviceTypeCamera"]);
    auto files = capture::files(device);
    ASSERT_EQ(files.size(), 2u);
    EXPECT_EQ(capture::download(files["IMG_1.JPG"], target()), 0);
    EXPECT_TRUE(readFile(target("IMG_1.JPG")) == picture("2009:03:15 10:20:30", 300'000, 1));
    EXPECT_EQ(capture::download(files["IMG_1.JPG"], target()), -48);
}

TEST_F(NetworkCameras, PartsAreReadWhereTheCameraGivesThem) {
    connect();
    auto files = capture::files(device);
    const std::string whole = picture("2009:03:15 10:20:30", 300'000, 1);
    EXPECT_TRUE(capture::read(files["IMG_1.JPG"], 100'000, 5000) == whole.substr(100'000, 5000));
    EXPECT_TRUE(capture::read(files["IMG_1.JPG"], 299'000, 5000) == whole.substr(299'000));
    EXPECT_TRUE(capture::read(files["IMG_1.JPG"], 300'000, 5000) == "");
}

TEST_F(NetworkCameras, PartsAreReadWhereItGivesFilesOnlyWhole) {
    PtpFaults faults;
    faults.hasNoParts = true;
    connect(faults);
    auto files = capture::files(device);
    const std::string whole = picture("2009:03:15 10:20:30", 300'000, 1);
    EXPECT_TRUE(capture::read(files["IMG_1.JPG"], 0, 5000) == whole.substr(0, 5000));
    EXPECT_TRUE(capture::read(files["IMG_1.JPG"], 100'000, 5000) == whole.substr(100'000, 5000));
    EXPECT_EQ(camera->transfers(), 1);
}

TEST_F(NetworkCameras, HostileNamesStayInTheFolder) {
    camera = std::make_unique<PtpResponder>(folder / "camera");
    camera->objects().rename("100TEST/IMG_1.JPG", "../../escaped.jpg");
    camera->objects().rename("101TEST/IMG_1.JPG", "/tmp/absolute.jpg");
    camera->objects().rename("101TEST/IMG_2.JPG", ".profile");
    address = camera->address();
    ASSERT_TRUE(ULANetworkCameraAdd(text(address)));
    device = capture::deviceNamed("Camera at " + address);
    const auto files = capture::files(device);
    // Those with slashes are not even listed.
    EXPECT_EQ(files.size(), 1u);
    EXPECT_TRUE(files.contains("_profile"));
    for (const auto& [name, file] : files) {
        EXPECT_EQ(name.find('/'), std::string::npos) << name;
        EXPECT_NE(name[0], '.') << name;
        capture::download(file, target());
    }
    EXPECT_FALSE(fs::exists(folder / "escaped.jpg"));
    EXPECT_FALSE(fs::exists(fs::path(target()).parent_path() / "escaped.jpg"));
    EXPECT_FALSE(fs::exists("/tmp/absolute.jpg"));
    for (const auto& entry : fs::recursive_directory_iterator(target()))
        EXPECT_TRUE(entry.is_regular_file());
}

TEST_F(NetworkCameras, UnpluggedAtAnyByteLeavesNothingAndGoesOnWhenItIsBack) {
    connect();
    auto files = capture::files(device);
    for (const std::int64_t byte : {0, 65'536, 131'072, 262'144}) {
        PtpFaults faults;
        faults.hangsUpAfter = byte;
        camera->setFaults(faults);
        EXPECT_NE(capture::download(files["IMG_1.JPG"], target()), 0) << byte;
        EXPECT_TRUE(fs::is_empty(target()));
        EXPECT_NE(problem(), "");
    }
    camera->setFaults({});
    EXPECT_EQ(capture::download(files["IMG_1.JPG"], target()), 0);
    EXPECT_TRUE(readFile(target("IMG_1.JPG")) == picture("2009:03:15 10:20:30", 300'000, 1));
}

TEST_F(NetworkCameras, CameraThatFallsSilentIsGivenUp) {
    connect();
    auto files = capture::files(device);
    PtpFaults faults;
    faults.fallsSilentAfter = 65'536;
    camera->setFaults(faults);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_NE(capture::download(files["IMG_1.JPG"], target()), 0);
    // A camera has half a minute for each answer.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(100));
    EXPECT_TRUE(fs::is_empty(target()));
}

TEST_F(NetworkCameras, CameraThatRefusesSaysSo) {
    PtpFaults faults;
    faults.refuses = true;
    connect(faults);
    ICAError error = 0;
    EXPECT_EQ(capture::properties(device, &error), nil);
    EXPECT_NE(error, 0);
    EXPECT_THAT(problem(), testing::HasSubstr("cannot open the camera"));
}

TEST_F(NetworkCameras, SizeThatWasWronglyToldIsCorruption) {
    PtpFaults faults;
    faults.toldSize = 400'000;
    connect(faults);
    auto files = capture::files(device);
    EXPECT_NE(capture::download(files["IMG_1.JPG"], target()), 0);
    EXPECT_TRUE(fs::is_empty(target()));
}

TEST_F(NetworkCameras, ListsThatLieAboutTheirLengthAreSurvived) {
    for (const std::int64_t told : {0x7FFFFFFFLL, 0xFFFFFFFFLL, 1000LL}) {
        PtpFaults faults;
        faults.toldHandles = told;
        camera = std::make_unique<PtpResponder>(folder / "camera", faults);
        address = camera->address();
        ULANetworkCameraAdd(text(address));
        const ICAObject liar = capture::deviceNamed("Camera at " + address);
        NSArray* data = [capture::properties(liar) objectForKey:@"data"];
        EXPECT_LE([data count], 3u) << told;
        ULANetworkCameraRemove(text(address));
        capture::devices();
    }
}

TEST_F(NetworkCameras, PacketsThatLieAboutTheirLengthAreSurvived) {
    for (const std::int64_t length : {0, 7, 12, 0x7FFFFFFF}) {
        PtpFaults faults;
        faults.packetLength = length;
        camera = std::make_unique<PtpResponder>(folder / "camera", faults);
        address = camera->address();
        ULANetworkCameraAdd(text(address));
        ICAError error = 0;
        capture::properties(capture::deviceNamed("Camera at " + address), &error);
        EXPECT_EQ(capture::properties(1, &error) == nil, false) << length;
        ULANetworkCameraRemove(text(address));
        capture::devices();
    }
}

// libgphoto2 closes it.
TEST_F(NetworkCameras, StandardInputStaysOpen) {
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(dup2(ends[0], 0), 0);
    struct stat before {
    }, after{};
    ASSERT_EQ(fstat(0, &before), 0);
    connect();
    EXPECT_EQ(capture::files(device).size(), 2u);
    ULANetworkCameraRemove(text(address));
    capture::devices();
    ASSERT_EQ(fstat(0, &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino);
}

TEST_F(NetworkCameras, AddressesAreChecked) {
    for (const char* wrong : {"", "a b", "host:", "host:0", "host:99999", "host:1:2", "/dev/x"})
        EXPECT_FALSE(ULANetworkCameraAdd(text(wrong))) << wrong;
    EXPECT_FALSE(ULANetworkCameraAdd(nullptr));
    EXPECT_FALSE(ULANetworkCameraRemove(text("never.added")));
    EXPECT_TRUE(ULANetworkCameraAdd(text("127.0.0.1:1")));
    EXPECT_NE(capture::deviceNamed("Camera at 127.0.0.1:1"), 0u);
    EXPECT_TRUE(ULANetworkCameraRemove(text("127.0.0.1:1")));
    EXPECT_EQ(capture::deviceNamed("Camera at 127.0.0.1:1"), 0u);
}

}  // namespace

}  // namespace tav::test
