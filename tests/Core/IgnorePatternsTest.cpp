// SPDX-License-Identifier: MIT
#include "ula/src/Core/IgnorePatterns.h"

#include <gtest/gtest.h>

using tav::ula::IgnorePatterns;

TEST(IgnorePatternsTest, WithoutPatternsNothingIsLeftOut) {
    EXPECT_FALSE(IgnorePatterns({}).match("a/b"));
}

TEST(IgnorePatternsTest, PatternWithoutSlashIsHeldAgainstEveryNameOnTheWay) {
    const IgnorePatterns patterns({".git", "*.tmp"});
    EXPECT_TRUE(patterns.match(".git"));
    EXPECT_TRUE(patterns.match("a/.git/objects/12"));
    EXPECT_TRUE(patterns.match("a/b.tmp"));
    EXPECT_FALSE(patterns.match("a/.gitignore"));
    EXPECT_FALSE(patterns.match("tmp"));
}

TEST(IgnorePatternsTest, PatternWithSlashIsHeldAgainstThePathBelowTheRoot) {
    const IgnorePatterns patterns({"build/out*"});
    EXPECT_TRUE(patterns.match("build/output/a/b"));
    EXPECT_FALSE(patterns.match("a/build/out"));
    EXPECT_FALSE(patterns.match("build/a/out"));
}

TEST(IgnorePatternsTest, SlashAtTheEndOfAPatternIsNoSlash) {
    EXPECT_TRUE(IgnorePatterns({"cache/"}).match("a/cache/file"));
}
