// SPDX-License-Identifier: MIT
// What --json prints, of real things, against the published schema. Needs root: mounts in a space
// of its own.
#include "tests/support/ApplicationBundle.h"
#include "tests/support/DisplayServer.h"
#include "tests/support/Mounts.h"
#include "tests/support/Picture.h"
#include "tests/support/PtpResponder.h"
#include "tests/support/RunningProgram.h"
#include "tests/tool/JsonSchema.h"
#include "tests/tool/ToolProcess.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <thread>

namespace tav::test {

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class JsonSchemaTool : public ToolTest {
protected:
    JsonSchemaTool() {
        fs::create_directory(folder / "home");
        setenv("HOME", (folder / "home").c_str(), 1);
        setenv("XDG_DATA_HOME", (folder / "home/data").c_str(), 1);
        setenv("TZ", "UTC", 1);
        for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "DISPLAY"})
            unsetenv(name);
    }
    std::string json(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.push_back("--json");
        return run(arguments, input).output;
    }
    void writeSettings() {
        for (const std::vector<std::string>& words :
             std::vector<std::vector<std::string>>{{"whole", "1"},
                                                   {"broken", "2.5"},
                                                   {"yes", "true"},
                                                   {"text", "\xC2\x9B \n"},
                                                   {"texts", "a", "b"},
                                                   {"none", "nan", "--type", "double"}}) {
            std::vector<std::string> arguments = {"a.xml", "set", "Group"};
            arguments.insert(arguments.end(), words.begin(), words.end());
            EXPECT_EQ(settings(arguments).code, 0);
        }
    }
    std::string real() const { return fs::canonical(folder.path()).string(); }

    JsonSchema schema;
};

/// What the checks below are of.
const std::set<std::string> kChecked = {"cameras",        "cameras-list",  "cameras-files",
                                        "cameras-import", "dir",           "doctor",
                                        "drives",         "folders",       "running",
                                        "screens",        "secret-get",    "secret-list",
                                        "secret-where",   "settings-list", "settings-export",
                                        "settings-get",   "settings-set",  "settings-import",
                                        "system",         "time",          "trash",
                                        "volumes",        "watch"};

TEST_F(JsonSchemaTool, HasAnEntryForEveryCommandWithJsonAndNoOther) {
    std::set<std::string> commands;
    std::string command;
    // The branches of the completion: a command, and then its options.
    for (const std::string& line : lines(run({"completion", "bash"}).output)) {
        if (line.starts_with("        \"ula ") && line.ends_with("\")"))
            command = line.substr(13, line.size() - 15);
        if (line.find("options='") != std::string::npos && line.find("--json") != std::string::npos)
            commands.insert(command);
    }
    std::set<std::string> names;
    for (std::string name : commands) {
        std::replace(name.begin(), name.end(), ' ', '-');
        names.insert(name);
    }
    EXPECT_EQ(names, JsonSchema::commands());
    EXPECT_EQ(names, kChecked);
}

TEST_F(JsonSchemaTool, RefusesWhatIsNoneOfThem) {
    EXPECT_THAT(schema.verdicts("#", "[] {} {\"version\": 2, \"drives\": []} 3"),
                testing::Not(testing::Contains("valid")));
}

TEST_F(JsonSchemaTool, DescribesCameras) {
    fs::create_directories(folder / "camera/DCIM/100TEST");
    write("camera/DCIM/100TEST/IMG_1.JPG", picture("2009:03:15 10:20:30", 5000, 1));
    write("camera/DCIM/100TEST/IMG_2.JPG", picture("2009:03:16 10:20:30", 400'000, 2));
    PtpResponder camera(folder / "camera");
    const auto onCamera = [&](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "cameras");
        arguments.insert(arguments.end(), {"--network", camera.address()});
        return json(arguments);
    };
    schema.expectExactly("cameras", json({"cameras"}));
    schema.expectExactly("cameras", onCamera({}));
    schema.expectExactly("cameras-list", onCamera({"list"}));
    schema.expectExactly("cameras-files", onCamera({"files"}));
    PtpFaults faults;
    faults.hangsUpAfter = 100'000;
    camera.setFaults(faults);
    const std::string failed = onCamera({"import", "Pictures"});
    EXPECT_THAT(failed, HasSubstr("\"result\":\"failed\""));
    camera.setFaults({});
    schema.expectExactly("cameras-import", failed + onCamera({"import", "Pictures"}));
}

TEST_F(JsonSchemaTool, DescribesFolders) {
    schema.expectExactly("folders", json({"folders"}));
    fs::create_directories(folder / "Pictures/Item 10");
    fs::create_symlink("Item 10", folder / "Pictures/link");
    fs::create_symlink("none", folder / "Pictures/nowhere");
    write("Pictures/odd\n\xFF", "");
    schema.expectExactly("dir", json({"dir", "Pictures", "-a", "-R"}));
    schema.expectExactly("dir", json({"dir", "Pictures/Item 10"}));
}

TEST_F(JsonSchemaTool, DescribesVolumesAndDrives) {
    const WithoutLeakCheck noLeakCheck;
    const MountedImage image("/Volumes/Card", folder.path(), "Card");
    const MountedMemory odd("/Volumes/odd\xFF");
    const DeadShare share(real() + "/share");
    fs::create_symlink(share.point(), "/Volumes/Share");
    fs::create_symlink("/none", "/Volumes/Stale");
    schema.expectExactly("drives", json({"drives"}));
    schema.expectExactly("volumes", json({"volumes"}));
    fs::remove("/Volumes/Share");
    fs::remove("/Volumes/Stale");
}

TEST_F(JsonSchemaTool, DescribesWhatTheDoctorFinds) {
    const std::string unwell = json({"doctor"});
    EXPECT_THAT(unwell, HasSubstr("\"problem\""));
    schema.expectExactly("doctor", unwell);
    const DisplayServer server("800x600x24");
    schema.expectExactly("doctor", json({"doctor"}));
}

TEST_F(JsonSchemaTool, DescribesApplicationsAndTheSystem) {
    const ApplicationBundle photo(real(), "Photo Box", "com.maker.schema");
    const RunningProgram running(photo.program(), "wait");
    ASSERT_EQ(running.readLine(), "ready");
    const std::string applications = json({"running"});
    EXPECT_THAT(applications, HasSubstr("com.maker.schema"));
    schema.expectExactly("running", applications);
    schema.expectExactly("system", json({"system"}));
}

TEST_F(JsonSchemaTool, DescribesScreens) {
    schema.expectExactly("screens", json({"screens"}));
    const DisplayServer server;
    server.addSecondHead();
    schema.expectExactly("screens", json({"screens"}));
    schema.expectExactly("system", json({"system"}));
}

TEST_F(JsonSchemaTool, DescribesSecrets) {
    run({"secret", "add", "Mail", "--account", "ann"}, "s3cret");
    run({"secret", "add", "Code"}, "odd \xFF");
    schema.expectExactly("secret-get", json({"secret", "get", "Mail", "--account", "ann"}));
    schema.expectExactly("secret-get", json({"secret", "get", "Code"}));
    schema.expectExactly("secret-list", json({"secret", "list"}));
    schema.expectExactly("secret-where", json({"secret", "where"}));
}

TEST_F(JsonSchemaTool, DescribesSettings) {
    writeSettings();
    const std::set<std::string> names = {"Group", "whole", "broken", "yes",
                                         "text",  "texts", "none"};
    schema.expectExactly("settings-list", json({"settings", "a.xml", "list"}), names);
    const std::string exported = json({"settings", "a.xml", "export"});
    schema.expectExactly("settings-export", exported, names);
    schema.expectExactly("settings-import", exported, names);
    for (const std::string name : {"whole", "broken", "yes", "text", "texts", "none"})
        schema.expectExactly("settings-get", json({"settings", "a.xml", "get", "Group", name}));
}

TEST_F(JsonSchemaTool, DescribesWhatSetReads) {
    writeSettings();
    const std::string got = json({"settings", "a.xml", "get", "Group", "broken"});
    for (const std::string& value :
         {got, std::string("3"), std::string("true"), std::string("2.5"), std::string("\"text\""),
          std::string("[\"a\"]"), std::string(R"({"type": "double", "value": "nan"})")}) {
        EXPECT_EQ(schema.verdicts("settings-set", value), std::vector<std::string>{"valid"});
        expectResult(settings({"b.xml", "set", "Group", "key" + value, "--json", value}), 0, "",
                     "");
    }
    EXPECT_EQ(json({"settings", "b.xml", "get", "Group", "key" + got}), got);
    for (const std::string value : {"null", "[1]", "{}", R"({"type": "int", "value": "x"})"}) {
        EXPECT_NE(schema.verdicts("settings-set", value), std::vector<std::string>{"valid"});
        EXPECT_EQ(settings({"b.xml", "set", "Group", "key", "--json", value}).code, 2) << value;
    }
}

TEST_F(JsonSchemaTool, DescribesDates) {
    write("a.jpg", picture("2009:03:15 10:20:30"));
    write("notes", "");
    write("odd\xFF", "");
    schema.expectExactly("time", json({"time", "a.jpg", "notes", "missing"}), {"error"});
    schema.expectExactly("time", json({"time", "odd\xFF"}), {"error"});
}

TEST_F(JsonSchemaTool, DescribesReceipts) {
    write("one", "");
    write("odd \x7F\n\xC2\x9B", "");
    const std::string receipts = json({"trash", "one", "missing", "odd \x7F\n\xC2\x9B"});
    schema.expectExactly("trash", receipts);
    // Names are exact all the same, and come back.
    EXPECT_THAT(receipts, HasSubstr("odd \\u007f\\n\\u009b\""));
    const std::string restored = json({"trash", "--restore", "-"}, receipts);
    schema.expectExactly("trash", restored);
    EXPECT_TRUE(fs::exists(folder / "odd \x7F\n\xC2\x9B"));
}

TEST_F(JsonSchemaTool, DescribesEvents) {
    write("start", "");
    RunningTool tool(real(), {"watch", "-r", "--drives", "--json", "."});
    std::string events;
    const auto awaitEvent = [&](const std::string& text) {
        for (std::string line = "none"; !line.empty() && line.find(text) == std::string::npos;)
            events += (line = tool.readLine()) + "\n";
    };
    {
        std::jthread writer([&](const std::stop_token& end) {
            while (!end.stop_requested()) {
                std::ofstream(folder / "start", std::ios::app) << "x";
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
        awaitEvent("\"changed\"");
    }
    fs::create_directory(folder / "sub");
    awaitEvent("\"created\"");
    fs::rename(folder / "sub", folder / "moved");
    awaitEvent("\"moved\"");
    fs::remove(folder / "moved");
    awaitEvent("\"removed\"");
    {
        const MountedImage image("/Volumes/Card", folder.path(), "Card");
        awaitEvent("\"mounted\"");
    }
    awaitEvent("\"unmounted\"");
    for (const char* event : {"changed", "created", "moved", "removed", "mounted", "unmounted"})
        EXPECT_THAT(events, HasSubstr(event));
    schema.expectExactly("watch", events, {"folder", "title"});
}

}  // namespace

}  // namespace tav::test
