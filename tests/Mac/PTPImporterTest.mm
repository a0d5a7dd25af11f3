// SPDX-License-Identifier: MIT
// The importer on an image capture of the test's own, which stands in front of the real one. The
// importer is one for each process: each test has one of its own.
#include "ula/PTPImporter.h"
#include "ula/src/Mac/objcImporter.h"

#include <ImageCapture/ImageCapture.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

using Texts = std::vector<std::string>;

constexpr ICAObject kList = 7;

struct FakeCapture {
    ICAError listError = 0;
    ICAError registerError = 0;
    std::map<ICAObject, NSDictionary*> properties;
    std::map<ICAObject, ICAError> downloadErrors;
    Texts downloads;
    ICANotification notification = nullptr;
    Texts types;
};

FakeCapture capture;
Texts logged;

void keepLine(NSString* line) {
    const std::string text = [line UTF8String];
    const std::size_t begin = text.find("] ");
    logged.push_back(text.substr(begin == std::string::npos ? 0 : begin + 2));
    if (logged.back().ends_with("\n"))
        logged.back().pop_back();
}

}  // namespace

ICAError ICAGetDeviceList(ICAGetDeviceListPB* pb, ICACompletion completion) {
    EXPECT_EQ(completion, nullptr);
    pb->object = kList;
    return capture.listError;
}

ICAError ICACopyObjectPropertyDictionary(ICACopyObjectPropertyDictionaryPB* pb,
                                         ICACompletion completion) {
    EXPECT_EQ(completion, nullptr);
    NSDictionary* const found = capture.properties[pb->object];
    *pb->theDict = reinterpret_cast<CFDictionaryRef>([found retain]);
    return found == nil ? static_cast<ICAError>(kICAInvalidObjectErr) : ICAError(0);
}

ICAError ICADownloadFile(ICADownloadFilePB* pb, ICACompletion completion) {
    EXPECT_EQ(completion, nullptr);
    EXPECT_EQ(pb->fileFSRef, nullptr);
    capture.downloads.push_back(std::to_string(pb->object) + " to " +
                                coreservices::pathOf(*pb->dirFSRef) + " with " +
                                std::to_string(pb->flags));
    return capture.downloadErrors[pb->object];
}

ICAError ICARegisterForEventNotification(ICARegisterForEventNotificationPB* pb,
                                         ICACompletion completion) {
    EXPECT_EQ(completion, nullptr);
    EXPECT_EQ(pb->objectOfInterest, 0u);
    capture.notification = pb->notificationProc;
    for (NSString* type in reinterpret_cast<NSArray*>(const_cast<__CFArray*>(pb->eventsOfInterest)))
        capture.types.push_back([type UTF8String]);
    return capture.registerError;
}

namespace tav::test {

namespace {

using ula::PTPImporter;

class Importer : public testing::Test {
protected:
    Importer() {
        _NSLog_printf_handler = keepLine;
        [NSArray array];
    }

    void plugIn(ICAObject number, const Texts& files) {
        NSMutableArray* const data = [NSMutableArray array];
        for (std::size_t i = 0; i < files.size(); ++i)
            [data addObject:@{
                @"ifil" : [NSString stringWithUTF8String:files[i].c_str()],
                @"icao" : @(static_cast<unsigned>(number * 100 + i)),
            }];
        capture.properties[number] = [@{
            @"ICAUserAssignedDeviceNameKey" : @"Camera",
            @"ICADeviceTypeKey" : @"Type",
            @"ICANumberOfDownloadableObjectsKey" : @(static_cast<unsigned>(files.size())),
            @"data" : data,
        } retain];
        list();
    }
    void list() {
        NSMutableArray* const devices = [NSMutableArray array];
        for (const auto& [number, facts] : capture.properties)
            if (number != kList)
                [devices addObject:@{@"icao" : @(number)}];
        capture.properties[kList] = [@{@"devices" : devices} retain];
    }
    PTPImporter& importer() { return *PTPImporter::getInstance(); }
    void notify(CFStringRef type, long long device) {
        NSDictionary* const facts = @{(NSString*)kICANotificationDeviceICAObjectKey : @(device)};
        capture.notification(type, reinterpret_cast<CFDictionaryRef>(facts));
    }
    void connect() {
        importer().deviceAdded.connect([this](const std::string& device, const Texts& files) {
            std::string text = "+" + device;
            for (const std::string& file : files)
                text += " " + file;
            told.push_back(text);
        });
        importer().deviceRemoved.connect(
            [this](const std::string& device) { told.push_back("-" + device); });
    }
    std::string downloaded(const Texts& files, const std::string& location = "/tmp") {
        testing::internal::CaptureStdout();
        importer().downloadFiles("12345", files, location);
        return testing::internal::GetCapturedStdout();
    }

    NSAutoreleasePool* pool = [[NSAutoreleasePool alloc] init];
    Texts told;
};

TEST_F(Importer, IsOneAndTheSame) {
    EXPECT_EQ(&importer(), &importer());
}

TEST_F(Importer, ListsDevicesByTheirNumbers) {
    plugIn(12345, {"a.jpg"});
    plugIn(8, {"b.jpg"});
    EXPECT_THAT(importer().getDevices(), UnorderedElementsAre("12345", "8"));
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(Importer, RegistersForTheFourNotifications) {
    importer();
    EXPECT_THAT(capture.types,
                ElementsAre("ICANotificationTypeDeviceAdded", "ICANotificationTypeDeviceRemoved",
                            "ICANotificationTypeStoreAdded", "ICANotificationTypeStoreRemoved"));
}

TEST_F(Importer, WorksWithoutNotifications) {
    plugIn(12345, {"a.jpg"});
    capture.registerError = -1;
    EXPECT_THAT(importer().getDevices(), ElementsAre("12345"));
    EXPECT_THAT(logged, ElementsAre("could not register with ICA notifications!"));
}

TEST_F(Importer, FailureOfTheListIsSilent) {
    plugIn(12345, {"a.jpg"});
    capture.listError = -1;
    EXPECT_THAT(importer().getDevices(), IsEmpty());
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(Importer, FailureOfTheListsDictionaryIsLogged) {
    EXPECT_THAT(importer().getDevices(), IsEmpty());
    EXPECT_THAT(logged, ElementsAre("could not obtain device list dictionary!"));
}

TEST_F(Importer, DeviceThatCannotBeReadIsLoggedAndTheNextOneTaken) {
    plugIn(12345, {"a.jpg"});
    capture.properties[kList] = [@{@"devices" : @[ @{@"icao" : @5}, @{@"icao" : @12345} ]} retain];
    EXPECT_THAT(importer().getDevices(), ElementsAre("12345"));
    EXPECT_THAT(logged, ElementsAre("could not obtain device dictionary of current device!"));
}

TEST_F(Importer, DeviceWithoutFilesIsNeitherListedNorTold) {
    plugIn(12345, {});
    connect();
    EXPECT_THAT(importer().getDevices(), IsEmpty());
    notify(kICANotificationTypeDeviceAdded, 12345);
    EXPECT_THAT(told, IsEmpty());
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(Importer, DeviceThatComesIsToldWithItsFilesInOrder) {
    list();
    connect();
    plugIn(12345, {"b.jpg", "a.jpg", "b.jpg"});
    notify(kICANotificationTypeDeviceAdded, 12345);
    EXPECT_THAT(told, ElementsAre("+12345 b.jpg a.jpg b.jpg"));
    EXPECT_THAT(importer().getDevices(), ElementsAre("12345"));
}

TEST_F(Importer, FileWithoutANameIsNotTold) {
    list();
    connect();
    plugIn(12345, {"a.jpg"});
    NSMutableDictionary* const device = [[capture.properties[12345] mutableCopy] autorelease];
    NSArray* const named = [device objectForKey:@"data"];
    [device setObject:[@[ @{@"icao" : @7} ] arrayByAddingObjectsFromArray:named] forKey:@"data"];
    capture.properties[12345] = [device retain];
    notify(kICANotificationTypeDeviceAdded, 12345);
    EXPECT_THAT(told, ElementsAre("+12345 a.jpg"));
}

TEST_F(Importer, CameraWhoseCardIsToldAfterItIsToldTwice) {
    list();
    connect();
    plugIn(12345, {"a.jpg"});
    notify(kICANotificationTypeDeviceAdded, 12345);
    notify(kICANotificationTypeStoreAdded, 12345);
    EXPECT_THAT(told, ElementsAre("+12345 a.jpg", "+12345 a.jpg"));
    EXPECT_THAT(importer().getDevices(), ElementsAre("12345"));
}

TEST_F(Importer, RemovalIsToldAlsoOfWhatWasNeverListed) {
    plugIn(12345, {"a.jpg"});
    connect();
    notify(kICANotificationTypeStoreRemoved, 12345);
    notify(kICANotificationTypeDeviceRemoved, 99);
    EXPECT_THAT(told, ElementsAre("-12345", "-99"));
    EXPECT_THAT(importer().getDevices(), IsEmpty());
}

TEST_F(Importer, DeviceIsForgottenBeforeItsRemovalIsTold) {
    plugIn(12345, {"a.jpg"});
    Texts listed{"not told"};
    importer().deviceRemoved.connect([&](const std::string&) { listed = importer().getDevices(); });
    notify(kICANotificationTypeDeviceRemoved, 12345);
    EXPECT_THAT(listed, IsEmpty());
}

TEST_F(Importer, OtherNotificationsAreIgnored) {
    plugIn(12345, {"a.jpg"});
    connect();
    notify(CFSTR("ICANotificationTypeObjectAdded"), 12345);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(Importer, NumbersAreCutTo32Bits) {
    list();
    connect();
    notify(kICANotificationTypeDeviceRemoved, 0x1'0000'3039);
    EXPECT_THAT(told, ElementsAre("-12345"));
}

TEST_F(Importer, ChosenFilesAreDownloadedIntoTheFolder) {
    plugIn(12345, {"a.jpg", "b.jpg", "c.jpg"});
    EXPECT_EQ(downloaded({"c.jpg", "a.jpg"}), "download location: /tmp\n");
    EXPECT_THAT(capture.downloads,
                UnorderedElementsAre("1234500 to /tmp with 2", "1234502 to /tmp with 2"));
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(Importer, FirstFileOfANameIsMeant) {
    plugIn(12345, {"a.jpg", "a.jpg"});
    downloaded({"a.jpg", "a.jpg"});
    EXPECT_THAT(capture.downloads, ElementsAre("1234500 to /tmp with 2"));
}

TEST_F(Importer, NamesThatTheDeviceDoesNotHaveAreLeftOutInSilence) {
    plugIn(12345, {"a.jpg"});
    downloaded({"A.JPG", "", "x.jpg", "\xFF\xFE"});
    EXPECT_THAT(capture.downloads, IsEmpty());
    EXPECT_THAT(logged, IsEmpty());
}

TEST_F(Importer, FileThatIsThereIsLoggedAndTheNextOneTaken) {
    plugIn(12345, {"a.jpg", "b.jpg", "c.jpg"});
    capture.downloadErrors[1234500] = -48;
    capture.downloadErrors[1234501] = -9900;
    downloaded({"a.jpg", "b.jpg", "c.jpg"});
    EXPECT_EQ(capture.downloads.size(), 3u);
    EXPECT_THAT(logged, UnorderedElementsAre("a.jpg already exists",
                                             "trying to download b.jpg returned error -9900"));
}

TEST_F(Importer, FolderThatIsNotThereIsLogged) {
    plugIn(12345, {"a.jpg"});
    EXPECT_EQ(downloaded({"a.jpg"}, "/nonexistent/x"), "download location: /nonexistent/x\n");
    EXPECT_THAT(capture.downloads, IsEmpty());
    EXPECT_THAT(logged, ElementsAre("could not create FSRef from location string!"));
}

TEST_F(Importer, UnknownDeviceDownloadsNothing) {
    plugIn(8, {"a.jpg"});
    downloaded({"a.jpg"});
    EXPECT_THAT(capture.downloads, IsEmpty());
    EXPECT_THAT(logged, IsEmpty());
}

// By the class alone.
TEST_F(Importer, EntriesHaveTheFourKeysAndNoOthers) {
    plugIn(12345, {"a.jpg"});
    objcImporter* const known = [[NSClassFromString(@"objcImporter") alloc] init];
    NSDictionary* const entry = [[known getDevices] objectForKey:@12345];
    EXPECT_EQ([entry count], 4u);
    EXPECT_TRUE([[entry objectForKey:@"deviceName"] isEqual:@"Camera"]);
    EXPECT_TRUE([[entry objectForKey:@"deviceType"] isEqual:@"Type"]);
    EXPECT_TRUE([[entry objectForKey:@"nrOfDownloadableObjects"] isEqual:@1]);
    EXPECT_EQ([[entry objectForKey:@"data"] count], 1u);
    EXPECT_TRUE([entry isKindOfClass:[NSMutableDictionary class]]);
    [known dumpDevices];
    ASSERT_EQ(logged.size(), 1u);
    EXPECT_TRUE(logged[0].starts_with("_devices description:{"));
    [known release];
}

TEST_F(Importer, LaterEntryReplacesTheEarlierOne) {
    plugIn(12345, {"a.jpg"});
    objcImporter* const known = [[NSClassFromString(@"objcImporter") alloc] init];
    plugIn(12345, {"b.jpg", "c.jpg"});
    EXPECT_TRUE([known addDeviceDictionary:@12345]);
    EXPECT_THAT([known getFileNamesFromDevice:@12345], ElementsAre("b.jpg", "c.jpg"));
    EXPECT_THAT([known getFileNamesFromDevice:@8], IsEmpty());
    [known removeDeviceDictionary:@12345];
    EXPECT_EQ([[known getDevices] count], 0u);
    [known release];
}

TEST_F(Importer, TenThousandNamesAreFoundAtOnce) {
    Texts names;
    for (int i = 0; i < 10'000; ++i)
        names.push_back("IMG_" + std::to_string(i) + ".JPG");
    plugIn(12345, names);
    downloaded(names);
    EXPECT_EQ(capture.downloads.size(), 10'000u);
}

}  // namespace

}  // namespace tav::test
