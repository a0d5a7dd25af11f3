// SPDX-License-Identifier: MIT
#include "AppKit/ProcessTable.h"

#include "CoreFoundation/FolderStream.h"
#include "CoreFoundation/WholeContent.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace appkit {

namespace {

// Empty when there is nothing to read, for whatever reason.
std::string contentOf(const std::string& path) {
    const cf::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return file ? cf::readUpTo(file.get(), SIZE_MAX) : "";
}

std::string linkAt(int folder, const char* path) {
    char target[PATH_MAX];
    const ssize_t length = readlinkat(folder, path, target, sizeof target);
    return {target, length > 0 ? static_cast<size_t>(length) : 0};
}

// Texts that each end with a zero byte.
std::vector<std::string> texts(const std::string& bytes) {
    std::vector<std::string> result;
    for (size_t begin = 0; begin < bytes.size();) {
        size_t end = std::min(bytes.find('\0', begin), bytes.size());
        result.push_back(bytes.substr(begin, end - begin));
        begin = end + 1;
    }
    return result;
}

}  // namespace

std::string pathOfProgram(std::string link) {
    constexpr std::string_view kReplaced = " (deleted)";
    if (link.ends_with(kReplaced) && access(link.c_str(), F_OK) != 0)
        link.resize(link.size() - kReplaced.size());
    return link;
}

std::vector<RunningProgram> ProcessTable::programs() const {
    std::vector<RunningProgram> found;
    const cf::FolderStream folder(opendir(_folder.c_str()));
    if (!folder)
        return found;
    while (const dirent* entry = readdir(folder.get())) {
        if (!isdigit(static_cast<unsigned char>(entry->d_name[0])))
            continue;
        char name[sizeof entry->d_name + 8];
        snprintf(name, sizeof name, "%s/exe", entry->d_name);
        std::string path = linkAt(dirfd(folder.get()), name);
        if (!path.empty())
            found.push_back({atoi(entry->d_name), pathOfProgram(std::move(path))});
    }
    return found;
}

std::string ProcessTable::program(pid_t process) const {
    return pathOfProgram(linkAt(AT_FDCWD, pathOf(process, "exe").c_str()));
}

std::optional<ProcessOrigin> ProcessTable::origin(pid_t process) const {
    const std::string text = contentOf(pathOf(process, "stat"));
    // The name before may itself have parentheses and blanks.
    const size_t name = text.rfind(')');
    ProcessOrigin origin{};
    if (name == std::string::npos ||
        sscanf(text.c_str() + name + 1,
               " %*c %d %d %*d %*d %*d %*u %*u %*u %*u %*u %*u %*u %*d %*d %*d %*d %*d %*d %llu",
               &origin.parent, &origin.group, &origin.startTicks) != 3)
        return std::nullopt;
    return origin;
}

std::vector<std::string> ProcessTable::arguments(pid_t process) const {
    return texts(contentOf(pathOf(process, "cmdline")));
}

std::string ProcessTable::variable(pid_t process, const std::string& name) const {
    for (const std::string& text : texts(contentOf(pathOf(process, "environ"))))
        if (text.starts_with(name + "="))
            return text.substr(name.size() + 1);
    return {};
}

std::string ProcessTable::workingFolder(pid_t process) const {
    return linkAt(AT_FDCWD, pathOf(process, "cwd").c_str());
}

bool ProcessTable::isOfThisUser(pid_t process) const {
    struct stat item {};
    return stat(pathOf(process, "").c_str(), &item) == 0 && item.st_uid == geteuid();
}

std::string ProcessTable::pathOf(pid_t process, const char* name) const {
    return _folder + "/" + std::to_string(process) + "/" + name;
}

}  // namespace appkit
