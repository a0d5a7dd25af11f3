// SPDX-License-Identifier: MIT
#include "tests/tool/ToolProcess.h"

#include "tests/support/Patience.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <poll.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace tav::test {

namespace {

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File temporaryFile(const std::string& text = {}) {
    File file(std::tmpfile(), std::fclose);
    std::fwrite(text.data(), 1, text.size(), file.get());
    std::fflush(file.get());
    lseek(fileno(file.get()), 0, SEEK_SET);
    return file;
}

std::string readAll(int descriptor) {
    std::string text;
    std::array<char, 4096> piece;
    // A terminal whose other end is closed gives an error instead of an end.
    for (ssize_t count; (count = read(descriptor, piece.data(), piece.size())) > 0;)
        text.append(piece.data(), static_cast<std::size_t>(count));
    return text;
}

std::string contentOf(const File& file) {
    lseek(fileno(file.get()), 0, SEEK_SET);
    return readAll(fileno(file.get()));
}

[[noreturn]] void become(const std::string& folder, const std::vector<std::string>& arguments,
                         std::array<int, 3> streams, const std::string& terminalKind) {
    std::vector<char*> words = {const_cast<char*>("ula")};
    for (const std::string& argument : arguments)
        words.push_back(const_cast<char*>(argument.c_str()));
    words.push_back(nullptr);
    for (int i = 0; i < 3; ++i)
        dup2(streams[static_cast<std::size_t>(i)], i);
    setenv("TERM", terminalKind.c_str(), 1);
    if (chdir(folder.c_str()) == 0)
        execv(ULA_TOOL_PATH, words.data());
    _exit(127);
}

pid_t start(const std::string& folder, const std::vector<std::string>& arguments,
            std::array<int, 3> streams, const std::string& terminalKind = "xterm") {
    const pid_t process = fork();
    if (process == 0)
        become(folder, arguments, streams, terminalKind);
    return process;
}

int waitFor(pid_t process) {
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

}  // namespace

ToolResult runTool(const std::string& folder, const std::vector<std::string>& arguments,
                   const std::string& input, const std::string& outputPath) {
    const File in = temporaryFile(input);
    const File out = outputPath.empty() ? temporaryFile()
                                        : File(std::fopen(outputPath.c_str(), "wb"), std::fclose);
    const File err = temporaryFile();
    const pid_t process =
        start(folder, arguments, {fileno(in.get()), fileno(out.get()), fileno(err.get())});
    ToolResult result;
    result.code = waitFor(process);
    result.output = outputPath.empty() ? contentOf(out) : "";
    result.errors = contentOf(err);
    return result;
}

ToolResult runToolOnTerminal(const std::string& folder, const std::vector<std::string>& arguments,
                             const std::string& kind) {
    const int screen = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    grantpt(screen);
    unlockpt(screen);
    const int terminal = open(ptsname(screen), O_RDWR | O_NOCTTY | O_CLOEXEC);
    const File in = temporaryFile();
    const File out = temporaryFile();
    const pid_t process =
        start(folder, arguments, {fileno(in.get()), fileno(out.get()), terminal}, kind);
    close(terminal);
    ToolResult result;
    result.errors = readAll(screen);
    result.code = waitFor(process);
    result.output = contentOf(out);
    close(screen);
    return result;
}

ToolTest::ToolTest() {
    setenv("LC_ALL", "C.UTF-8", 1);
    unsetenv("LANGUAGE");
}

std::string outputOf(const std::string& command) {
    std::FILE* const output = popen(("{ " + command + "; } 2>&1").c_str(), "r");
    std::string text;
    std::array<char, 4096> piece;
    for (std::size_t size; (size = std::fread(piece.data(), 1, piece.size(), output)) > 0;)
        text.append(piece.data(), size);
    EXPECT_EQ(pclose(output), 0) << text;
    return text;
}

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> result;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        result.push_back(line);
    return result;
}

void expectResult(const ToolResult& result, int code, const std::string& output,
                  const std::string& errors) {
    EXPECT_EQ(result.output, output);
    EXPECT_EQ(result.errors, errors);
    EXPECT_EQ(result.code, code);
}

RunningTool::RunningTool(const std::string& folder, const std::vector<std::string>& arguments) {
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return;
    const File in = temporaryFile();
    _output = ends[0];
    _process = start(folder, arguments, {fileno(in.get()), ends[1], ends[1]});
    close(ends[1]);
}

RunningTool::~RunningTool() {
    closeOutput();
    if (_process <= 0)
        return;
    kill(_process, SIGKILL);
    waitFor(_process);
}

std::string RunningTool::readLine() {
    std::size_t end = 0;
    while ((end = _unread.find('\n')) == std::string::npos) {
        pollfd output{_output, POLLIN, 0};
        std::array<char, 4096> piece;
        const ssize_t count =
            poll(&output, 1, kPatienceMs) > 0 ? read(_output, piece.data(), piece.size()) : 0;
        if (count <= 0)
            return "";
        _unread.append(piece.data(), static_cast<std::size_t>(count));
    }
    const std::string line = _unread.substr(0, end);
    _unread.erase(0, end + 1);
    return line;
}

bool RunningTool::waitForLine(const std::string& line) {
    for (std::string next = readLine(); !next.empty(); next = readLine()) {
        if (next == line)
            return true;
        _seen += next + "\n";
    }
    return false;
}

void RunningTool::signal(int number) const {
    kill(_process, number);
}

void RunningTool::closeOutput() {
    if (_output >= 0)
        close(_output);
    _output = -1;
}

int RunningTool::wait() {
    return waitFor(std::exchange(_process, -1));
}

}  // namespace tav::test
