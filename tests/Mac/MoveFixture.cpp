// SPDX-License-Identifier: MIT
#include "tests/Mac/MoveFixture.h"

#include "tests/support/Patience.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <grp.h>
#include <stdexcept>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace tav::test {

namespace fs = std::filesystem;

namespace {

constexpr unsigned kOrdinaryUser = 65534;

/// Ends it when it does not end by itself. The exit code; less than 0 for a signal.
int waitFor(pid_t process) {
    const int handle = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    pollfd ended = {handle, POLLIN, 0};
    if (poll(&ended, 1, kPatienceMs) <= 0)
        kill(process, SIGKILL);
    close(handle);
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void give(const std::string& path, unsigned user) {
    for (const auto& entry : fs::recursive_directory_iterator(path))
        if (lchown(entry.path().c_str(), user, user) != 0)
            throw std::runtime_error("the sandbox cannot be given away");
    if (chown(path.c_str(), user, user) != 0 || chmod(path.c_str(), 0755) != 0)
        throw std::runtime_error("the sandbox cannot be given away");
}

void addNames(const std::string& place, std::vector<std::string>& names) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(place, error))
        names.push_back(entry.path().filename());
}

}  // namespace

BoundItem::BoundItem(const std::string& item, const std::string& point, bool isReadOnly)
    : _point(point) {
    if (mount(item.c_str(), point.c_str(), nullptr, MS_BIND, nullptr) != 0 ||
        (isReadOnly &&
         mount(nullptr, point.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) != 0))
        throw std::runtime_error(point + " cannot be covered");
}

BoundItem::~BoundItem() {
    umount2(_point.c_str(), MNT_DETACH);
}

MoveFixture::MoveFixture() {
    for (const char* name : {"home", "data", "machine", "tmp", "defaults"})
        fs::create_directory(folder / name);
    machineFolder = std::make_unique<BoundItem>(folder / "machine", applications);
    fs::copy_file(ULA_STAND_IN_PKEXEC, folder / "pkexec");
    chmod((folder / "pkexec").c_str(), 04755);
    _pkexec = std::make_unique<BoundItem>(folder / "pkexec", "/usr/bin/pkexec");
    writeFile(folder / "GNUstep.conf", "GNUSTEP_USER_DEFAULTS_DIR=" + (folder / "defaults") + "\n");
    if (const char* authority = std::getenv("XAUTHORITY"))
        fs::copy_file(authority, folder / "authority");
    EXPECT_EQ(mkfifo((folder / "report").c_str(), 0666), 0);
    _report = open((folder / "report").c_str(), O_RDWR | O_CLOEXEC);
}

MoveFixture::~MoveFixture() {
    close(_report);
}

std::string MoveFixture::install(const std::string& place, const std::string& name) {
    const std::string bundle = ApplicationBundle(folder / place, name, "com.maker.moving").path();
    if (_user != 0)
        give(folder / place, _user);
    return bundle;
}

void MoveFixture::becomeOrdinaryUser() {
    _user = kOrdinaryUser;
    chmod(folder.path().c_str(), 0755);
    for (const char* name : {"home", "data", "tmp", "defaults"})
        give(folder / name, _user);
    for (const char* name : {"authority", "report", "GNUstep.conf"})
        if (fs::exists(folder / name) && chown((folder / name).c_str(), _user, _user) != 0)
            throw std::runtime_error("the sandbox cannot be given away");
}

void MoveFixture::setVariables(const Variables& variables, const std::string& answers) const {
    const Variables all = {
        {"HOME", home},
        {"XDG_DATA_HOME", folder / "data"},
        {"TMP", folder / "tmp"},
        {"TMPDIR", folder / "tmp"},
        {"GNUSTEP_CONFIG_FILE", folder / "GNUstep.conf"},
        {"XAUTHORITY", folder / "authority"},
        {"MOVE_ANSWERS", answers},
        {"MOVE_REPORT", folder / "report"},
        {"MOVE_NAME", testing::UnitTest::GetInstance()->current_test_info()->name()},
    };
    for (const auto& [name, value] : all)
        setenv(name.c_str(), value.c_str(), 1);
    for (const auto& [name, value] : variables)
        setenv(name.c_str(), value.c_str(), 1);
}

void MoveFixture::become(const std::string& bundle) const {
    const std::string program = bundle + "/Contents/MacOS/" + fs::path(bundle).stem().string();
    const int errors = open((folder / "errors").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    dup2(errors, STDERR_FILENO);
    if (_user != 0 && (setgroups(0, nullptr) != 0 || setgid(_user) != 0 || setuid(_user) != 0))
        _exit(126);
    execl(program.c_str(), program.c_str(), nullptr);
    _exit(127);
}

MoveFixture::Run MoveFixture::run(const std::string& bundle, const std::string& answers,
                                  Variables variables) {
    const pid_t process = fork();
    if (process == 0) {
        setVariables(variables, answers);
        become(bundle);
    }
    Run result;
    result.exitCode = waitFor(process);
    const std::string own = std::to_string(process);
    for (std::string line; !(line = readLine(0)).empty();) {
        if (!line.starts_with(own + " ")) {
            _later.push_back(line);
            continue;
        }
        if (const auto at = line.find("ps -p " + own + " "); at != std::string::npos)
            line.replace(at + 6, own.size(), "SELF");
        result.lines.push_back(line.substr(own.size() + 1));
    }
    if (result.exitCode < 0 || result.exitCode == 1 || result.exitCode > 90)
        throw std::runtime_error("it ends with " + std::to_string(result.exitCode) + " after " +
                                 testing::PrintToString(result.lines) +
                                 readFile(folder / "errors"));
    return result;
}

std::string MoveFixture::readLine(int patienceMs) const {
    std::string line;
    pollfd ready = {_report, POLLIN, 0};
    char byte = 0;
    while (poll(&ready, 1, patienceMs) > 0 && read(_report, &byte, 1) == 1 && byte != '\n')
        line += byte;
    return line;
}

std::string MoveFixture::nextLine() {
    if (_later.empty())
        _later.push_back(readLine(kPatienceMs));
    const std::string line = _later.front();
    _later.pop_front();
    return line.substr(line.find(' ') + 1);
}

void MoveFixture::expectOpened(const std::string& bundle) {
    EXPECT_EQ(nextLine(), "started " + bundle);
    EXPECT_EQ(nextLine(), "returned");
}

std::vector<std::string> MoveFixture::trashed() const {
    std::vector<std::string> names;
    addNames(folder / "data/Trash/files", names);
    addNames(applications + "/.Trash-0/files", names);
    std::sort(names.begin(), names.end());
    return names;
}

std::string question(const std::string& message, const std::string& note, const std::string& box) {
    return "alert: \"" + message +
           "\" \"This version of the application is being run from a location other than the "
           "Applications folder. Would you like to move this version to the Applications folder?" +
           note + "\" [Move to Applications Folder (Return)] [Do Not Move (Escape)]" + box;
}

std::string relaunch(const std::string& process, const std::string& destination,
                     const std::string& quarantine) {
    const std::string command = quarantine.empty() ? "" : quarantine + " '" + destination + "';";
    return "task: /bin/sh | -c | (while [ `ps -p " + process +
           " | wc -l` -gt 1 ]; do sleep 0.1; done; " + command + " open '" + destination + "') &";
}

}  // namespace tav::test

int main(int count, char** words) {
    testing::InitGoogleTest(&count, words);
    std::filesystem::create_directories("/Applications");
    const std::string problem = tav::test::isolateMounts();
    if (!problem.empty()) {
        fprintf(stderr, "No mounts of the test's own: %s\n", problem.c_str());
        return 1;
    }
    return RUN_ALL_TESTS();
}
