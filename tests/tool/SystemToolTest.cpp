// SPDX-License-Identifier: MIT
// ula system
#include "tests/tool/ToolProcess.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/DisplayServer.h"

#include <cstdlib>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <sched.h>
#include <unistd.h>

namespace tav::test {

namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;
using Json = nlohmann::json;

class SystemTool : public ToolTest {
protected:
    SystemTool() {
        for (const char* name : {"LC_MESSAGES", "LC_MONETARY", "LANG", "LANGUAGE"})
            unsetenv(name);
        unsetenv("DISPLAY");
        setenv("LC_ALL", "de_AT.UTF-8", 1);
        // Where it is installed, the tool would speak it.
        setenv("LOCPATH", folder.path().c_str(), 1);
    }
    Json json() { return Json::parse(run({"system", "--json"}).output)["system"]; }
};

TEST_F(SystemTool, TellsALineOfEachFact) {
    const ToolResult result = run({"system"});
    EXPECT_EQ(result.code, 0);
    EXPECT_EQ(result.errors, "");
    EXPECT_THAT(result.output, StartsWith("Language    Deutsch (de_AT)\nCountry     AT\nSystem "));
    EXPECT_THAT(result.output, ContainsRegex("\nProcessors  .+, [0-9]+ MHz, .+\nGraphics    .+\n"
                                             "Displays    none\n"
                                             "Memory      [0-9.]+ [KMGT]iB, [0-9.]+ [KMGT]iB "));
}

TEST_F(SystemTool, JsonHasTheSameInBytes) {
    const Json facts = json();
    EXPECT_EQ(facts["language"], "Deutsch");
    EXPECT_EQ(facts["languageCode"], "de_AT");
    EXPECT_EQ(facts["countryCode"], "AT");
    EXPECT_THAT(facts["systemVersion"].get<std::string>(), ContainsRegex("^[0-9]+\\.[0-9]+\\."));
    EXPECT_EQ(facts["processor"]["count"].get<long>(), sysconf(_SC_NPROCESSORS_ONLN));
    EXPECT_GT(facts["processor"]["speedMHz"].get<int>(), 0);
    EXPECT_EQ(facts["memory"]["physical"].get<long>(),
              sysconf(_SC_PHYS_PAGES) * sysconf(_SC_PAGESIZE));
    EXPECT_LE(facts["memory"]["usable"].get<long>(), facts["memory"]["physical"].get<long>());
    EXPECT_TRUE(facts["graphics"].contains("model"));
    EXPECT_EQ(facts["displays"], Json::array());
}

TEST_F(SystemTool, FollowsTheUsersLocale) {
    setenv("LC_ALL", "C", 1);
    EXPECT_EQ(json()["language"], "English");
    unsetenv("LC_ALL");
    setenv("LANG", "en_US.UTF-8", 1);
    setenv("LANGUAGE", "fr", 1);
    const Json facts = json();
    EXPECT_EQ(facts["languageCode"], "fr");
    EXPECT_EQ(facts["preferredLanguage"], "French");
    EXPECT_EQ(facts["countryCode"], "US");
}

TEST_F(SystemTool, SaysHowManyProcessorsMayBeUsed) {
    const std::string folderPath = folder.path().string();
    const std::string output = runInChild([&folderPath] {
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(static_cast<std::size_t>(sched_getcpu()), &one);
        sched_setaffinity(0, sizeof one, &one);
        return runTool(folderPath, {"system", "--json"}).output;
    });
    EXPECT_EQ(Json::parse(output)["system"]["processor"]["usable"], 1);
}

TEST_F(SystemTool, TellsTheWorkingAreasOfDisplays) {
    const DisplayServer server("800x600x24");
    EXPECT_THAT(run({"system"}).output, HasSubstr("\nDisplays    800 x 600 (primary)\n"));
    const Json displays = json()["displays"];
    EXPECT_EQ(displays, Json::parse(R"([{"width": 800, "height": 600, "bitsPerPixel": 24,
                                          "primary": true}])"));
}

TEST_F(SystemTool, TakesNoArguments) {
    EXPECT_EQ(run({"system", "extra"}).code, 2);
}

}  // namespace

}  // namespace tav::test
