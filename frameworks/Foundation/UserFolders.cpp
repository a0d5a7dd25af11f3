// SPDX-License-Identifier: MIT
#include "Foundation/UserFolders.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <mutex>
#include <sys/stat.h>

namespace foundation {

namespace {

constexpr std::string_view kHome = "$HOME";

// The text between double quotes at the beginning, with what backslashes protect as it is. Fails:
// nothing when there are none.
std::optional<std::string> unquoted(std::string_view text) {
    if (text.empty() || text[0] != '"')
        return std::nullopt;
    std::string result;
    for (size_t i = 1; i < text.size() && text[i] != '"'; ++i) {
        if (text[i] == '\\' && i + 1 < text.size())
            ++i;
        result += text[i];
    }
    return result;
}

// "$HOME/Bilder" or an absolute path; nothing else may stand there.
std::optional<std::string> resolved(const std::string& value, const std::string& home) {
    std::string path = value;
    if (path.starts_with(kHome))
        path = home + path.substr(kHome.size());
    const bool isOfHome = value.size() == kHome.size() || value[kHome.size()] == '/';
    if (path.empty() || path[0] != '/' || (value.starts_with(kHome) && !isOfHome))
        return std::nullopt;
    while (path.size() > 1 && path.back() == '/')
        path.pop_back();
    return path;
}

// The value of the line "XDG_<name>_DIR=value".
std::optional<std::string_view> valueIn(std::string_view line, std::string_view name) {
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    for (const std::string_view part : {std::string_view("XDG_"), name, std::string_view("_DIR")}) {
        if (!line.starts_with(part))
            return std::nullopt;
        line.remove_prefix(part.size());
    }
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    if (!line.starts_with('='))
        return std::nullopt;
    line.remove_prefix(1);
    line.remove_prefix(std::min(line.find_first_not_of(" \t"), line.size()));
    return line;
}

// The desktops ignore what is no absolute path.
std::string folderOfVariable(const char* variable, const std::string& home, const char* suffix) {
    const char* const value = std::getenv(variable);
    return value != nullptr && value[0] == '/' ? value : home + suffix;
}

// The file as it was read last.
class UserDirs {
public:
    static UserDirs& instance() {
        static auto* const file = new UserDirs;
        return *file;
    }

    std::optional<std::string> folder(const char* name, const std::string& home) {
        const std::string path =
            folderOfVariable("XDG_CONFIG_HOME", home, "/.config") + "/user-dirs.dirs";
        const std::lock_guard lock(_mutex);
        readIfChanged(path);
        return folderInUserDirs(_text, name, home);
    }

private:
    void readIfChanged(const std::string& path) {
        struct stat state {};
        if (stat(path.c_str(), &state) != 0) {
            _path.clear();
            _text.clear();
            return;
        }
        if (path == _path && isSame(state))
            return;
        std::ifstream file(path, std::ios::binary);
        _text.assign(std::istreambuf_iterator<char>(file), {});
        _path = path;
        _state = state;
    }

    bool isSame(const struct stat& state) const {
        return state.st_ino == _state.st_ino && state.st_size == _state.st_size &&
               state.st_mtim.tv_sec == _state.st_mtim.tv_sec &&
               state.st_mtim.tv_nsec == _state.st_mtim.tv_nsec;
    }

    std::mutex _mutex;
    std::string _path;
    std::string _text;
    struct stat _state {};
};

}  // namespace

std::optional<std::string> folderInUserDirs(std::string_view text, std::string_view name,
                                            const std::string& home) {
    std::optional<std::string> folder;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        const std::optional<std::string_view> value = valueIn(line, name);
        const std::optional<std::string> path = value ? unquoted(*value) : std::nullopt;
        if (std::optional<std::string> found = path ? resolved(*path, home) : std::nullopt)
            folder = std::move(found);
    }
    return folder;
}

std::optional<std::string> userFolder(const char* name, const std::string& home) {
    return UserDirs::instance().folder(name, home);
}

std::string dataFolder(const std::string& home) {
    return folderOfVariable("XDG_DATA_HOME", home, "/.local/share");
}

}  // namespace foundation
