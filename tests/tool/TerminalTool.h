// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <sys/types.h>
#include <termios.h>
#include <vector>

namespace tav::test {

/// The built tool while it runs, all its streams on a terminal of its own. Killed at the end.
class TerminalTool {
public:
    TerminalTool(const std::string& folder, const std::vector<std::string>& arguments);
    ~TerminalTool();
    TerminalTool(const TerminalTool&) = delete;
    TerminalTool& operator=(const TerminalTool&) = delete;

    /// Waits until the terminal shows it. Fails: false when nothing more comes.
    bool waitFor(const std::string& text);
    void type(const std::string& text);
    void signal(int number) const;
    /// Whether the terminal shows what is typed.
    bool showsTyping() const;
    pid_t id() const { return _process; }
    /// The exit code, or minus the number of the signal.
    int wait();
    /// All that the terminal has shown; whole after `wait`.
    const std::string& shown() const { return _shown; }

private:
    bool readMore();

    /// The user's end, and the tool's, which is held open until the tool has ended.
    int _screen = -1;
    int _terminal = -1;
    /// The tool's end as it was left.
    termios _settings{};
    pid_t _process = -1;
    std::string _shown;
};

}  // namespace tav::test
