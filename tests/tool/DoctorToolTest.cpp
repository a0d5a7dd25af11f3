// SPDX-License-Identifier: MIT
// ula doctor as a whole: what it prints, what it returns, and that it always ends.
#include "tests/tool/DoctorTool.h"

#include "tests/support/DisplayServer.h"
#include "tests/support/Mounts.h"
#include "tests/support/SecretSession.h"
#include "tests/tool/SilentSocket.h"
#include "tests/tool/TerminalTool.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace tav::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;
using Json = nlohmann::json;

TEST_F(DoctorTool, OnADesktopAllIsWell) {
    const DisplayServer server("800x600x24");
    const SecretSession session;
    const ToolResult result = examined({"doctor", "--json"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.errors, "");
    for (const char* id : {"display", "session-bus", "secret-service", "volumes", "inotify",
                           "trash", "cameras", "mounts", "locale"})
        EXPECT_EQ(findIn(result.output, id).state, "ok") << id << result.output;
}

TEST_F(DoctorTool, JsonHasAVersionAndEveryCheckInOrder) {
    const Json json = Json::parse(examined({"doctor", "--json"}).output);
    EXPECT_EQ(json.size(), 2U);
    EXPECT_EQ(json["version"], 1);
    std::vector<std::string> ids;
    for (const Json& check : json["checks"]) {
        EXPECT_EQ(check.size(), 4U);
        ids.push_back(check["id"]);
        const bool isWell = check["state"] == "ok" || check["state"] == "unknown";
        EXPECT_EQ(check["remedy"] == "", isWell) << check;
        EXPECT_NE(check["message"], "");
    }
    EXPECT_EQ(ids, (std::vector<std::string>{"display", "session-bus", "secret-service", "volumes",
                                             "inotify", "trash", "cameras", "mounts", "locale",
                                             "clock"}));
}

TEST_F(DoctorTool, TextIsALineForEachCheckWithWhatMendsIt) {
    setenv("DISPLAY", ":4711", 1);
    const ToolResult result = examined({"doctor"});
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, StartsWith("problem  display         no X server is at :4711 -> "));
    EXPECT_THAT(result.output, ContainsRegex("\nok       mounts          [^\n]+\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("\033")));
    EXPECT_EQ(std::ranges::count(result.output, '\n'), 10);
}

TEST_F(DoctorTool, StatesAreColouredOnATerminalOnly) {
    setenv("TERM", "xterm", 1);
    unsetenv("NO_COLOR");
    std::string shown;
    for (int attempt = 0; attempt == 0 || (attempt < 10 && isSilent(shown)); ++attempt) {
        TerminalTool tool(folder.path().string(), {"doctor"});
        EXPECT_EQ(tool.wait(), 1);
        shown = tool.shown();
    }
    EXPECT_THAT(shown, HasSubstr("\033[31mproblem  \033[0mdisplay "));
    EXPECT_THAT(shown, HasSubstr("\033[32mok       \033[0mlocale "));
}

TEST_F(DoctorTool, WarningsAreNoFailure) {
    const DisplayServer server("800x600x24");
    const SessionBus bus(busWithoutServices());
    const ToolResult result = examined({"doctor"});
    EXPECT_THAT(result.output, HasSubstr("\nwarning  secret-service  there is no Secret Service"));
    EXPECT_EQ(result.code, 0) << result.output;
}

TEST_F(DoctorTool, WaitsForNothingThatDoesNotAnswer) {
    const WithoutLeakCheck answersNothing;
    const MountedMemory displays("/tmp/.X11-unix");
    const SilentSocket display("/tmp/.X11-unix/X4711");
    const SilentSocket bus(place("bus"));
    const DeadShare share(home);
    setenv("DISPLAY", ":4711", 1);
    setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + place("bus")).c_str(), 1);
    const auto begin = std::chrono::steady_clock::now();
    const ToolResult result = run({"doctor", "--json"});
    // The first of these alone would keep us for twenty-five seconds.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(24));
    EXPECT_EQ(result.code, 1);
    EXPECT_EQ(findIn(result.output, "display").message, "the X server does not answer");
    EXPECT_EQ(findIn(result.output, "session-bus").message, "the session bus does not answer");
    EXPECT_EQ(findIn(result.output, "secret-service").state, "warning");
    EXPECT_EQ(findIn(result.output, "trash").message,
              "the disk of the home folder does not answer");
    EXPECT_EQ(findIn(result.output, "mounts").message, home + ": does not answer");
    EXPECT_EQ(findIn(result.output, "locale").state, "ok");
}

TEST_F(DoctorTool, TakesNoArguments) {
    EXPECT_EQ(run({"doctor", "extra"}).code, 2);
}

}  // namespace

}  // namespace tav::test
