// SPDX-License-Identifier: MIT
// ula running
#include "tests/support/ApplicationBundle.h"
#include "tests/support/RunningProgram.h"
#include "tests/tool/ToolProcess.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace tav::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class RunningApplicationsTool : public ToolTest {
protected:
    RunningApplicationsTool() { EXPECT_EQ(other.readLine(), "ready"); }

    const std::string place = std::filesystem::canonical(folder.path()).string();
    const ApplicationBundle photo{place, "Photo Box", "com.maker.toolphoto"};
    RunningProgram other{photo.program(), "wait"};
};

TEST_F(RunningApplicationsTool, ListsNamesIdentifiersAndPaths) {
    const ToolResult result = run({"running"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, StartsWith("PROCESS  NAME "));
    EXPECT_THAT(result.output,
                ContainsRegex("\n" + std::to_string(other.process()) +
                              " +Photo Box +com.maker.toolphoto +" + photo.path() + "\n"));
}

TEST_F(RunningApplicationsTool, ListsThoseOfANameOrAnIdentifier) {
    for (const char* wanted : {"Photo Box", "com.maker.toolphoto"}) {
        const ToolResult result = run({"running", wanted});
        EXPECT_EQ(result.code, 0);
        EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2);
    }
    EXPECT_EQ(run({"running", "photo box"}).code, 1);
    other.finish();
    EXPECT_EQ(run({"running", "Photo Box"}).code, 1);
}

TEST_F(RunningApplicationsTool, JsonHasEverything) {
    EXPECT_EQ(run({"running", "--json", "com.maker.toolphoto"}).output,
              "{\n  \"version\": 1,\n  \"applications\": [\n    {\n      \"process\": " +
                  std::to_string(other.process()) +
                  ",\n      \"name\": \"Photo Box\",\n      \"identifier\": "
                  "\"com.maker.toolphoto\",\n      \"path\": \"" +
                  photo.path() + "\"\n    }\n  ]\n}\n");
    EXPECT_EQ(run({"running", "--json", "com.maker.none"}).output,
              "{\n  \"version\": 1,\n  \"applications\": []\n}\n");
}

TEST_F(RunningApplicationsTool, DoesNotListItself) {
    EXPECT_THAT(run({"running", "--json"}).output, Not(HasSubstr("\"name\": \"ula\"")));
}

TEST_F(RunningApplicationsTool, NamesCannotSteerTheTerminal) {
    const ApplicationBundle evil(place, "a\x1b[31m", "com.maker.evil");
    const RunningProgram running(evil.program(), "wait");
    ASSERT_EQ(running.readLine(), "ready");
    EXPECT_THAT(run({"running"}).output, Not(HasSubstr("\x1b")));
}

TEST_F(RunningApplicationsTool, ANameMayBeginWithABracket) {
    const ApplicationBundle bracket(place, "[Photo]", "com.maker.bracket");
    const RunningProgram running(bracket.program(), "wait");
    ASSERT_EQ(running.readLine(), "ready");
    EXPECT_EQ(run({"running", "[Photo]"}).code, 0);
}

TEST_F(RunningApplicationsTool, UnknownOptionIsWrongUsage) {
    EXPECT_EQ(run({"running", "--none"}).code, 2);
    EXPECT_EQ(run({"running", "one", "two"}).code, 2);
}

}  // namespace

}  // namespace tav::test
