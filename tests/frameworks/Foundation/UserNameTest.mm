// SPDX-License-Identifier: MIT
#import <Foundation/Foundation.h>

#include "tests/support/ChildProcess.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <pwd.h>
#include <string>
#include <unistd.h>

namespace {

constexpr uid_t kUnknownUser = 3'999'999;

class UserName : public testing::Test {
protected:
    UserName() : _pool([[NSAutoreleasePool alloc] init]) {
        for (const char* name : {"LOGNAME", "USER"})
            unsetenv(name);
    }
    ~UserName() override { [_pool release]; }

    static std::string name() { return [NSUserName() UTF8String]; }
    static std::string nameOfUnknownUser() {
        return tav::test::runInChild([] {
            // What the database was asked last is not to be the answer.
            getpwuid(0);
            return setuid(kUnknownUser) == 0 ? name() : "no such user";
        });
    }

private:
    NSAutoreleasePool* _pool;
};

TEST_F(UserName, IsThatOfThePasswordDatabaseWhateverTheEnvironmentSays) {
    setenv("LOGNAME", "somebody", 1);
    setenv("USER", "else", 1);
    const passwd* const entry = getpwuid(getuid());
    ASSERT_NE(entry, nullptr);
    EXPECT_EQ(name(), entry->pw_name);
}

TEST_F(UserName, IsTheEnvironmentsForAUserWithoutAnEntry) {
    setenv("USER", "j\xC3\xBCrgen", 1);
    EXPECT_EQ(nameOfUnknownUser(), "j\xC3\xBCrgen");
    setenv("LOGNAME", "somebody", 1);
    EXPECT_EQ(nameOfUnknownUser(), "somebody");
}

TEST_F(UserName, IsTheNumberOfAUserWhomNobodyNames) {
    EXPECT_EQ(nameOfUnknownUser(), "3999999");
    setenv("LOGNAME", "", 1);
    setenv("USER", "no \xFF text", 1);
    EXPECT_EQ(nameOfUnknownUser(), "3999999");
}

}  // namespace
