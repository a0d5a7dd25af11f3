// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tav::test {

struct ToolResult {
    std::string output;
    std::string errors;
    int code = -1;  ///< negative: minus the signal that ended it
};

/// Runs the built tool in `folder` and waits for its end. `outputPath`, if given, is opened as its
/// standard output.
ToolResult runTool(const std::string& folder, const std::vector<std::string>& arguments,
                   const std::string& input = {}, const std::string& outputPath = {});
/// The same with standard error on a terminal of this kind (TERM); what that showed is in `errors`.
ToolResult runToolOnTerminal(const std::string& folder, const std::vector<std::string>& arguments,
                             const std::string& kind = "xterm");

/// At the tool's end the leak sanitizer stops every thread; those that wait for what does not
/// answer cannot be stopped.
class WithoutLeakCheck {
public:
    WithoutLeakCheck() { setenv("ASAN_OPTIONS", "detect_leaks=0", 1); }
    ~WithoutLeakCheck() { unsetenv("ASAN_OPTIONS"); }
    WithoutLeakCheck(const WithoutLeakCheck&) = delete;
    WithoutLeakCheck& operator=(const WithoutLeakCheck&) = delete;
};

/// The tool while it runs, its standard output and error in one. Killed at the end.
class RunningTool {
public:
    RunningTool(const std::string& folder, const std::vector<std::string>& arguments);
    ~RunningTool();
    RunningTool(const RunningTool&) = delete;
    RunningTool& operator=(const RunningTool&) = delete;

    /// Waits for a line; empty when none comes. Without its end.
    std::string readLine();
    /// Reads lines until there is this one. Fails: false, and `seen` has what came instead.
    bool waitForLine(const std::string& line);
    const std::string& seen() const { return _seen; }
    void signal(int number) const;
    /// No one reads any more.
    void closeOutput();
    /// As `ToolResult::code`.
    int wait();

private:
    int _output = -1;
    pid_t _process = -1;
    std::string _unread;
    std::string _seen;
};

/// Tests that run the tool in a folder of their own.
class ToolTest : public testing::Test {
protected:
    /// It speaks English.
    ToolTest();

    ToolResult run(const std::vector<std::string>& arguments, const std::string& input = {}) {
        return runTool(folder.path().string(), arguments, input);
    }
    /// `ula settings FILE …`
    ToolResult settings(std::vector<std::string> arguments, const std::string& input = {}) {
        arguments.insert(arguments.begin(), "settings");
        return run(arguments, input);
    }
    void write(const std::string& name, const std::string& text) { writeFile(folder / name, text); }
    std::string read(const std::string& name) { return readFile(folder / name); }

    TemporaryFolder folder;
};

/// What a command of the shell prints, errors too. Fails the test when the command does.
std::string outputOf(const std::string& command);
/// Its lines without their ends.
std::vector<std::string> lines(const std::string& text);

/// Fails unless the tool said exactly this.
void expectResult(const ToolResult& result, int code, const std::string& output,
                  const std::string& errors);

}  // namespace tav::test
