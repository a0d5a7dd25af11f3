// SPDX-License-Identifier: MIT
#include "ula/foundation/text/FormatStream.h"

#include <gtest/gtest.h>
#include <stdexcept>

namespace tav::text {
namespace {

std::string formatted(const char* format, std::initializer_list<String> arguments) {
    std::string result;
    {
        const FormatStream stream(format, [&](const std::string& text) { result = text; });
        const FormatStream* last = &stream;
        for (const String& argument : arguments)
            last = &last->add(argument);
    }
    return result;
}

TEST(FormatStreamTest, FillsPlaceholdersInOrder) {
    EXPECT_EQ(formatted("%* and %*.", {"a", "b"}), "a and b.");
    EXPECT_EQ(formatted("%*%*", {"a", "b"}), "ab");
    EXPECT_EQ(formatted("100% %d", {}), "100% %d");
}

TEST(FormatStreamTest, AnArgumentsOwnPlaceholderIsLeftAlone) {
    EXPECT_EQ(formatted("<%*> <%*>", {"%*", "b"}), "<%*> <b>");
}

TEST(FormatStreamTest, PlaceholdersWithoutAnArgumentStay) {
    EXPECT_EQ(formatted("%* %*", {"a"}), "a %*");
}

TEST(FormatStreamTest, ArgumentsWithoutAPlaceholderAreAppended) {
    EXPECT_EQ(formatted("line", {"a", "b"}), "line a b");
    EXPECT_EQ(formatted(nullptr, {}), "");
}

TEST(FormatStreamTest, WhatTheReceiverThrowsIsDropped) {
    {
        const FormatStream stream("x", [](const std::string&) { throw std::runtime_error("no"); });
    }
    SUCCEED();
}

}  // namespace
}  // namespace tav::text
