// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <filesystem>

namespace tav::test {

/// Tests that run commands of a guide in a shell, whose user has a folder and no session.
class GuideTool : public ToolTest {
protected:
    explicit GuideTool(const std::string& guide)
        : _text(readFile(std::filesystem::path(ULA_GUIDES) / guide)) {
        setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
        setenv("XDG_CONFIG_HOME", (folder / "config").c_str(), 1);
        setenv("HOME", folder.path().c_str(), 1);
        for (const char* name : {"DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR", "DISPLAY"})
            unsetenv(name);
        const std::string path = std::filesystem::path(ULA_TOOL_PATH).parent_path().string();
        setenv("PATH", (path + ":/usr/bin:/bin").c_str(), 1);
    }
    /// Every line of its blocks for a shell that runs the tool.
    std::vector<std::string> commands() const {
        std::vector<std::string> found;
        bool isForShell = false;
        for (const std::string& line : lines(_text)) {
            if (line.starts_with("```"))
                isForShell = line == "```sh";
            else if (isForShell && (" " + line).find(" ula ") != std::string::npos)
                found.push_back(line);
        }
        return found;
    }
    /// The one in which the text stands.
    std::string commandWith(const std::string& text) const {
        for (const std::string& command : commands())
            if (command.find(text) != std::string::npos)
                return command;
        ADD_FAILURE() << "no command with " << text;
        return {};
    }
    /// What it prints. Fails the test when it fails.
    std::string inShell(const std::string& command) {
        writeFile(folder / "command",
                  "set -euo pipefail\ncd " + folder.path().string() + "\n" + command + "\n");
        return outputOf("bash " + (folder / "command"));
    }
    std::string does(const std::string& text) { return inShell(commandWith(text)); }

private:
    const std::string _text;
};

}  // namespace tav::test
