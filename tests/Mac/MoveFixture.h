// SPDX-License-Identifier: MIT
// A machine for an application that moves: a home, Applications folders, volumes and a pkexec that
// nothing outside the test sees. Needs root's rights and an X server.
#pragma once

#include "tests/support/ApplicationBundle.h"
#include "tests/support/Mounts.h"
#include "tests/support/RunningProgram.h"

#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace tav::test {

/// A file or a folder shown in place of another one.
class BoundItem {
public:
    BoundItem(const std::string& item, const std::string& point, bool isReadOnly = false);
    ~BoundItem();
    BoundItem(const BoundItem&) = delete;
    BoundItem& operator=(const BoundItem&) = delete;

private:
    std::string _point;
};

class MoveFixture : public testing::Test {
public:
    /// What an application did: its exit code, and what it reported.
    struct Run {
        int exitCode = -1;
        std::vector<std::string> lines;
    };
    using Variables = std::map<std::string, std::string>;

protected:
    MoveFixture();
    ~MoveFixture() override;

    /// The application in a folder of the sandbox, as NAME.app; its path.
    std::string install(const std::string& place, const std::string& name = "Photo Box");
    /// Runs it to its end, with the answers to its alerts.
    Run run(const std::string& bundle, const std::string& answers, Variables variables = {});
    /// The next line of an application that was opened; empty when none comes.
    std::string nextLine();
    /// Waits until a bundle was opened and has found that it is where it belongs.
    void expectOpened(const std::string& bundle);
    /// Runs what follows as a user who is no administrator, and owns the sandbox.
    void becomeOrdinaryUser();
    /// The names of what is in the user's trash, and in that of the folder of applications.
    std::vector<std::string> trashed() const;

    TemporaryFolder folder{std::filesystem::canonical(std::filesystem::temp_directory_path())};
    const std::string home = folder / "home";
    const std::string applications = "/Applications";
    std::unique_ptr<BoundItem> machineFolder;

private:
    void setVariables(const Variables& variables, const std::string& answers) const;
    [[noreturn]] void become(const std::string& bundle) const;
    std::string readLine(int patienceMs) const;

    std::unique_ptr<BoundItem> _pkexec;
    unsigned _user = 0;
    int _report = -1;
    std::deque<std::string> _later;  // lines of applications that were opened
};

/// The alert's line for a question, its note with a blank before it, and its box.
std::string question(const std::string& message, const std::string& note = "",
                     const std::string& box = " < small Do not show this message again>");

inline const std::string kToMachine = "Move to Applications folder?";
inline const std::string kToHome = "Move to Applications folder in your Home folder?";
inline const std::string kMoving = "log: INFO -- Moving myself to the Applications folder";
inline const std::string kFailed = "alert: \"Could not move to Applications folder\" [OK (Return)]";
inline const std::string kExists =
    "alert: \"Application already exists\" \"An application with the same name already exists in "
    "the Applications folder. Do you want to continue and move the existing application to the "
    "Trash?\" [Continue (Return)] [Cancel (Escape)]";

/// What is given to the shell for a new start.
std::string relaunch(const std::string& process, const std::string& destination,
                     const std::string& quarantine = "/usr/bin/xattr -d -r com.apple.quarantine");

}  // namespace tav::test
