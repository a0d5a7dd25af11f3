// SPDX-License-Identifier: MIT
#include "tests/support/DisplayServer.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace tav::test {

namespace {

// Without input devices and monitors of the machine's: only what the driver makes up.
constexpr const char* kOutputs = R"(
Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
EndSection
Section "Device"
    Identifier "card"
    Driver "dummy"
    VideoRam 256000
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 5.0-1000.0
    VertRefresh 5.0-200.0
EndSection
Section "Screen"
    Identifier "screen"
    Device "card"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "1280x1024"
        Virtual 4096 4096
    EndSubSection
EndSection
)";

/// Replaces the calling process.
[[noreturn]] void execute(const std::vector<std::string>& command, const std::string& log) {
    const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    execvp(arguments[0], arguments.data());
    _exit(127);
}

std::string readLine(int descriptor) {
    std::string line;
    for (char c; read(descriptor, &c, 1) == 1 && c != '\n';)
        line += c;
    return line;
}

void run(const std::string& command) {
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error("failed: " + command);
}

}  // namespace

DisplayServer::DisplayServer(const std::string& size) {
    start({"Xvfb", "-screen", "0", size});
}

DisplayServer::DisplayServer() {
    writeFile(_folder / "xorg.conf", kOutputs);
    const std::string folder = _folder.path().string();
    start({"Xorg", "-config", folder + "/xorg.conf", "-logfile", folder + "/xorg.log",
           "-novtswitch", "-sharevts"});
}

void DisplayServer::start(std::vector<std::string> command) {
    std::array<int, 2> ready{};
    if (pipe(ready.data()) != 0)
        throw std::runtime_error("no pipe");
    command.insert(command.end(),
                   {"-noreset", "-nolisten", "tcp", "-displayfd", std::to_string(ready[1])});
    _process = fork();
    if (_process == 0)
        execute(command, _folder / "output.log");
    close(ready[1]);
    // The server writes its number when it takes clients, and nothing when it cannot start.
    const std::string number = readLine(ready[0]);
    close(ready[0]);
    if (number.empty())
        throw std::runtime_error("no X server: " + readFile(_folder / "output.log"));
    _name = ":" + number;
    setenv("DISPLAY", _name.c_str(), 1);
}

DisplayServer::~DisplayServer() {
    kill();
    unsetenv("DISPLAY");
}

void DisplayServer::addSecondHead(const std::string& where) const {
    configure("--addmode DUMMY1 1024x768");
    configure("--output DUMMY1 --mode 1024x768 " + where);
}

void DisplayServer::configure(const std::string& arguments) const {
    run("xrandr --display " + _name + " " + arguments);
}

void DisplayServer::setProperty(const std::string& name, const std::string& format,
                                const std::string& value) const {
    run("xprop -display " + _name + " -root -f " + name + " " + format + " -set " + name + " '" +
        value + "'");
}

std::string DisplayServer::describeWindow(const std::string& which) const {
    const std::string command = "xwininfo -display " + _name + ' ' + which;
    FILE* const output = popen(command.c_str(), "r");
    std::string text;
    for (int c = 0; output != nullptr && (c = std::fgetc(output)) != EOF;)
        text += static_cast<char>(c);
    if (output == nullptr || pclose(output) != 0)
        throw std::runtime_error("failed: " + command);
    return text;
}

void DisplayServer::kill() {
    if (_process < 0)
        return;
    ::kill(_process, SIGKILL);
    waitpid(_process, nullptr, 0);
    _process = -1;
}

}  // namespace tav::test
