// SPDX-License-Identifier: MIT
// Rights and programs that are run with them, with a pkexec that stands in for the dialog, and with
// the real one where there is nobody to ask. Mounts and becomes another user: needs root.
#include "Security/Authorization/WaitForTool.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/Mounts.h"
#include "tests/support/TemporaryFolder.h"

#include <Security/Security.h>
#include <csignal>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace tav::test;
namespace fs = std::filesystem;

constexpr uid_t kOrdinaryUser = 65534;
constexpr AuthorizationFlags kAsking =
    kAuthorizationFlagInteractionAllowed | kAuthorizationFlagExtendRights;

/// Of this process, for as long as the object lives.
class Authorization {
public:
    Authorization() {
        AuthorizationCreate(nullptr, kAuthorizationEmptyEnvironment, kAuthorizationFlagDefaults,
                            &_reference);
    }
    ~Authorization() { AuthorizationFree(_reference, kAuthorizationFlagDefaults); }
    Authorization(const Authorization&) = delete;
    Authorization& operator=(const Authorization&) = delete;

    OSStatus obtain(const char* name = kAuthorizationRightExecute,
                    AuthorizationFlags flags = kAsking) {
        AuthorizationItem item = {name, 0, nullptr, 0};
        const AuthorizationRights rights = {1, &item};
        return AuthorizationCopyRights(_reference, &rights, nullptr, flags, nullptr);
    }
    /// What the program's end looks like to whoever waits; -1 when it is not run.
    int run(const char* program, std::vector<std::string> words) {
        std::vector<char*> pointers;
        for (std::string& word : words)
            pointers.push_back(word.data());
        pointers.push_back(nullptr);
        int status = -1;
        if (AuthorizationExecuteWithPrivileges(_reference, program, 0, pointers.data(), nullptr) !=
                errAuthorizationSuccess ||
            security::waitForTool(&status) < 0)
            return -1;
        return status;
    }

private:
    AuthorizationRef _reference = nullptr;
};

class Privileged : public testing::Test {
protected:
    Privileged() {
        fs::permissions(folder.path(), fs::perms(0755));
        fs::copy_file(ULA_STAND_IN_PKEXEC, folder / "pkexec");
        chmod((folder / "pkexec").c_str(), 04755);
        EXPECT_EQ(mount((folder / "pkexec").c_str(), "/usr/bin/pkexec", nullptr, MS_BIND, nullptr),
                  0);
    }
    ~Privileged() override { umount2("/usr/bin/pkexec", MNT_DETACH); }

    /// The function's text, said by an ordinary user whose answer to the dialog is given.
    static std::string asUser(const char* answer, const std::function<std::string()>& function) {
        return runInChild([&] {
            setenv("ULA_TEST_PKEXEC", answer, 1);
            if (setgid(kOrdinaryUser) != 0 || setuid(kOrdinaryUser) != 0)
                return std::string("still root");
            return function();
        });
    }

    TemporaryFolder folder;
};

TEST_F(Privileged, ProgramsRunAsRootOneAfterTheOther) {
    const std::string source = folder / "source";
    const std::string target = folder / "one'; touch x; \n two.app";
    writeFile(source, "new");
    writeFile(target, "old");
    EXPECT_EQ(
        asUser(
            "grant",
            [&] {
                Authorization authorization;
                std::string text = std::to_string(authorization.obtain());
                text += " " + std::to_string(authorization.run("/bin/rm", {"-rf", target}));
                text += fs::exists(target) ? " there" : " gone";
                text += " " + std::to_string(authorization.run("/bin/cp", {"-pR", source, target}));
                return text;
            }),
        "0 0 gone 0");
    struct stat item {};
    EXPECT_EQ(stat(target.c_str(), &item), 0);
    EXPECT_EQ(item.st_uid, 0u);
    EXPECT_EQ(readFile(target), "new");
    EXPECT_FALSE(fs::exists("/x"));
}

TEST_F(Privileged, ThePasswordIsForAMoveAndForNothingElse) {
    const std::string file = folder / "file";
    const std::string application = folder / "a.app";
    const std::vector<std::vector<std::string>> commands = {
        {"/bin/true"},
        {"/bin/sh", "-c", "rm " + file},
        {"/bin/rm", "-rf", file},
        {"/bin/rm", "-rf", file, application},
        {"/bin/rm", "-rf", "a.app"},
        {"/bin/rm", "-rf", application + "/../file"},
        {"/bin/rm", file, application},
        {"/bin/cp", "-pR", file, "/etc/b"},
        {"/bin/cp", "-pR", "--target-directory=/etc", application},
        {"/bin/cp", "-pR", folder / "a.app/../file", application},
    };
    writeFile(file, "");
    const std::string answers = asUser("grant", [&] {
        Authorization authorization;
        std::string text;
        for (const auto& words : commands) {
            const std::vector<std::string> arguments(words.begin() + 1, words.end());
            text +=
                std::to_string(WEXITSTATUS(authorization.run(words[0].c_str(), arguments))) + " ";
        }
        return text;
    });
    EXPECT_EQ(answers, "126 126 126 126 126 126 126 126 126 126 ");
    EXPECT_TRUE(fs::exists(file));
    EXPECT_FALSE(fs::exists(application));
}

TEST_F(Privileged, TheChildEndsAsTheProgramDoes) {
    const std::string source = folder / "source";
    const std::string target = folder / "target.app";
    writeFile(source, "more than a file may hold");
    const auto statuses = [&] {
        // The limit is the program's, too; what it writes beyond that ends it by a signal.
        const rlimit noCore{0, 0}, small{1, 1};
        setrlimit(RLIMIT_CORE, &noCore);
        setrlimit(RLIMIT_FSIZE, &small);
        Authorization authorization;
        const int exited = authorization.run("/bin/cp", {"-pR", "/nonexistent", target});
        const int killed = authorization.run("/bin/cp", {"-pR", source, target});
        return std::to_string(WEXITSTATUS(exited)) + " " + std::to_string(WTERMSIG(killed));
    };
    EXPECT_EQ(asUser("grant", statuses), "1 " + std::to_string(SIGXFSZ));
}

TEST_F(Privileged, OtherChildrenAreNotTakenForTheProgram) {
    EXPECT_EQ(
        asUser(
            "grant",
            [] {
                Authorization authorization;
                authorization.obtain();
                const pid_t other = fork();
                if (other == 0)
                    _exit(44);
                siginfo_t ended{};
                waitid(P_PID, static_cast<id_t>(other), &ended, WEXITED | WNOWAIT);
                const int status = authorization.run("/bin/cp", {"-pR", "/nonexistent", "/x.app"});
                int own = 0;
                const bool isLeft = waitpid(other, &own, 0) == other;
                return std::to_string(WEXITSTATUS(status)) + " " +
                       std::to_string(isLeft ? WEXITSTATUS(own) : -1);
            }),
        "1 44");
}

TEST_F(Privileged, ADismissedDialogIsACancellation) {
    EXPECT_EQ(asUser("cancel", [] { return std::to_string(Authorization().obtain()); }), "-60006");
}

TEST_F(Privileged, NobodyToAskIsARefusalAndNothingIsRun) {
    EXPECT_EQ(asUser("nobody",
                     [] {
                         Authorization authorization;
                         return std::to_string(authorization.obtain()) + " " +
                                std::to_string(authorization.run("/bin/rm", {"-rf", "/x.app"}));
                     }),
              "-60005 -1");
}

TEST_F(Privileged, OtherRightsAndRequestsWithoutADialogAreRefused) {
    EXPECT_EQ(asUser("grant",
                     [] {
                         Authorization authorization;
                         return std::to_string(authorization.obtain("system.preferences")) + " " +
                                std::to_string(authorization.obtain(kAuthorizationRightExecute, 0));
                     }),
              "-60005 -60007");
    EXPECT_EQ(AuthorizationFree(nullptr, 0), errAuthorizationInvalidRef);
    EXPECT_EQ(AuthorizationCreate(nullptr, nullptr, 0, nullptr), errAuthorizationInvalidPointer);
}

TEST_F(Privileged, TheRealProgramWithoutAnAgentIsARefusal) {
    umount2("/usr/bin/pkexec", MNT_DETACH);
    EXPECT_EQ(asUser("", [] { return std::to_string(Authorization().obtain()); }), "-60005");
}

}  // namespace
