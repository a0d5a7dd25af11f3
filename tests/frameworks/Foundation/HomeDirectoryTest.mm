// SPDX-License-Identifier: MIT
#import <Foundation/HomeDirectory.h>

#include <cstdlib>
#include <gtest/gtest.h>
#include <pwd.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class HomeDirectory : public testing::Test {
protected:
    HomeDirectory() : _pool([[NSAutoreleasePool alloc] init]) {}
    ~HomeDirectory() override { [_pool release]; }

    static std::string home() { return [NSHomeDirectory() UTF8String]; }

private:
    NSAutoreleasePool* _pool;
};

TEST_F(HomeDirectory, IsTheEnvironments) {
    setenv("HOME", "/tmp/an \xC3\xA9 home", 1);
    EXPECT_EQ(home(), "/tmp/an \xC3\xA9 home");
}

TEST_F(HomeDirectory, IsThatOfThePasswordDatabaseWithoutOne) {
    const passwd* const entry = getpwuid(getuid());
    const std::string expected = entry != nullptr ? entry->pw_dir : "/";
    for (const char* value : {"", "relative", "/no \xFF text"}) {
        setenv("HOME", value, 1);
        EXPECT_EQ(home(), expected) << value;
    }
    unsetenv("HOME");
    EXPECT_EQ(home(), expected);
}

TEST_F(HomeDirectory, IsTheRootFolderForAUserWithoutAnEntry) {
    if (fork() == 0) {
        unsetenv("HOME");
        _exit(setuid(3'999'999) == 0 && home() == "/" ? 0 : 1);
    }
    int status = -1;
    wait(&status);
    EXPECT_EQ(status, 0);
}

}  // namespace
