// SPDX-License-Identifier: MIT
#include "ula/UniqueAppInstance.h"

#import <AppKit/AppKit.h>

#include "tests/support/ApplicationBundle.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ReplacedMethod.h"
#include "tests/support/RunningProgram.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <objc/runtime.h>

namespace {

using namespace tav::test;
using namespace tav::ula;
namespace fs = std::filesystem;
using testing::ElementsAre;

/// The launches that the library asks for, which do not happen.
std::vector<std::string> launched;

BOOL noteLaunch(id, SEL, NSString* path) {
    launched.emplace_back([path UTF8String]);
    return NO;
}

void noteTask(id task, SEL) {
    launched.emplace_back([[task launchPath] UTF8String]);
}

class Instances : public testing::Test {
protected:
    Instances()
        : _pool([[NSAutoreleasePool alloc] init]),
          _launch(class_getInstanceMethod([NSWorkspace class], @selector(launchApplication:))),
          _original(method_setImplementation(_launch, reinterpret_cast<IMP>(noteLaunch))) {
        launched.clear();
    }
    ~Instances() override {
        method_setImplementation(_launch, _original);
        [_pool release];
    }

    static std::vector<int> processesOf(const std::string& identifier) {
        std::vector<int> found;
        for (const RunningApplicationInfo& application : runningApplications())
            if (application.bundleIdentifier == identifier)
                found.push_back(application.processIdentifier);
        return found;
    }
    static std::string ownName() { return fs::read_symlink("/proc/self/exe").filename().string(); }

    NSAutoreleasePool* _pool;
    Method _launch;
    IMP _original;
    TemporaryFolder folder{fs::canonical(fs::temp_directory_path())};
    ApplicationBundle photo{folder.path().string(), "Photo Box", "com.maker.photobox"};
};

TEST_F(Instances, AloneIsUniqueAndSwitchesToNobody) {
    EXPECT_TRUE(isUniqueAppInstance(ownName()));
    EXPECT_FALSE(switchToAppInstance(ownName()));
    EXPECT_TRUE(isUniqueAppInstance("com.maker.photobox"));
    EXPECT_FALSE(switchToAppInstance("com.maker.photobox"));
    EXPECT_TRUE(isUniqueAppInstance(""));
    EXPECT_TRUE(isUniqueAppInstance("\xff\xfe"));
    EXPECT_THAT(launched, ElementsAre());
}

TEST_F(Instances, AnotherIsFoundByItsName) {
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    EXPECT_FALSE(isUniqueAppInstance("Photo Box"));
}

TEST_F(Instances, AnotherIsFoundByItsIdentifierAlone) {
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    EXPECT_FALSE(isUniqueAppInstance("com.maker.photobox"));
}

TEST_F(Instances, NamesAreComparedByteByByte) {
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    for (const char* almost :
         {"photo box", "Photo", "Photo Box ", "com.maker.PhotoBox", "com.maker"})
        EXPECT_TRUE(isUniqueAppInstance(almost)) << almost;
}

TEST_F(Instances, OneThatHasCrashedIsGone) {
    RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    other.kill();
    EXPECT_TRUE(isUniqueAppInstance("com.maker.photobox"));
}

TEST_F(Instances, OneWhoseFilesWereRemovedStillRuns) {
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    fs::remove(photo.program());
    EXPECT_FALSE(isUniqueAppInstance("com.maker.photobox"));
}

TEST_F(Instances, SwitchingLaunchesThePathOfTheOther) {
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    // Whatever the launch answers.
    EXPECT_TRUE(switchToAppInstance("com.maker.photobox"));
    EXPECT_TRUE(switchToAppInstance("Photo Box"));
    EXPECT_THAT(launched, ElementsAre(photo.path(), photo.path()));
}

TEST_F(Instances, SwitchingStartsNoSecondCopy) {
    method_setImplementation(_launch, _original);
    // A copy would be seen, but for one that a task has not yet become.
    const ReplacedMethod task(
        class_getInstanceMethod([[[[NSTask alloc] init] autorelease] class], @selector(launch)),
        reinterpret_cast<IMP>(noteTask));
    const RunningProgram other(photo.program(), "wait");
    ASSERT_EQ(other.readLine(), "ready");
    EXPECT_TRUE(switchToAppInstance("com.maker.photobox"));
    EXPECT_THAT(launched, ElementsAre());
    EXPECT_EQ(processesOf("com.maker.photobox"), std::vector<int>{other.process()});
}

TEST_F(Instances, AllAreListedInTheOrderOfTheirStart) {
    const RunningProgram first(photo.program(), "wait");
    ASSERT_EQ(first.readLine(), "ready");
    const RunningProgram second(photo.program(), "wait");
    ASSERT_EQ(second.readLine(), "ready");
    EXPECT_THAT(processesOf("com.maker.photobox"), ElementsAre(first.process(), second.process()));
    for (const RunningApplicationInfo& application : runningApplications()) {
        if (application.bundleIdentifier != "com.maker.photobox")
            continue;
        EXPECT_EQ(application.name, "Photo Box");
        EXPECT_EQ(application.path, photo.path());
    }
}

TEST_F(Instances, OwnProcessIsListedOnce) {
    const std::vector<RunningApplicationInfo> all = runningApplications();
    EXPECT_EQ(std::count_if(all.begin(), all.end(),
                            [](const auto& each) { return each.processIdentifier == getpid(); }),
              1);
}

TEST(ModalParent, IsKeptAndNoMore) {
    EXPECT_EQ(getModalParentHandle(), nullptr);
    int window = 0;
    setModalParentHandle(&window);
    EXPECT_EQ(getModalParentHandle(), &window);
    setModalParentHandle(nullptr);
    EXPECT_EQ(getModalParentHandle(), nullptr);
}

}  // namespace
