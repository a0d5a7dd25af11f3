// SPDX-License-Identifier: MIT
// For tests of ula doctor. They need root: mounts in a space of their own.
#pragma once

#include "tests/tool/ToolProcess.h"

#include <cstdlib>
#include <string>
#include <vector>

namespace tav::test {

/// Of a user with a home folder, and nothing else of a desktop.
class DoctorTool : public ToolTest {
protected:
    struct Finding {
        std::string state;
        std::string message;
        std::string remedy;
    };

    DoctorTool();

    std::string place(const std::string& name) const;
    /// The configuration of a bus that starts nothing.
    std::string busWithoutServices(const std::string& address = "unix:tmpdir=/tmp") const;
    /// What the check finds. All of them together have two seconds, which a busy machine may use
    /// up: again, until this one has had its time.
    Finding find(const std::string& id);
    /// Whatever it finds first, be it that nothing answers.
    Finding findAtOnce(const std::string& id);
    /// What is printed once every check has had its time.
    ToolResult examined(const std::vector<std::string>& arguments);
    static Finding findIn(const std::string& output, const std::string& id);
    /// What it finds in the shell that has done as it was told, run by the command `within`.
    Finding findAfter(const std::string& remedy, const std::string& id,
                      const std::string& within = "") const;
    /// Whether a check, or one of several, says that nothing answers.
    static bool isSilent(const std::string& text);
    /// Does in a shell as the user is told to. Gives the exit code.
    static int mend(const std::string& remedy);

    const std::string home = place("home");
};

}  // namespace tav::test
