// SPDX-License-Identifier: MIT
#include "Foundation/BundleLayout.h"

#include <climits>
#include <initializer_list>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace foundation {

namespace {

constexpr std::string_view kProgramsFolder = "/Contents/MacOS";

// Without the last component; "/" for what lies there.
std::string folderOf(const std::string& path) {
    const size_t slash = path.rfind('/');
    return path.substr(0, slash == 0 ? 1 : slash);
}

std::string nameOf(const std::string& path) {
    return path.substr(path.rfind('/') + 1);
}

std::string below(const std::string& folder, const std::string& name) {
    return (folder == "/" ? "" : folder) + "/" + name;
}

bool isFolder(const std::string& path) {
    struct stat item {};
    return stat(path.c_str(), &item) == 0 && S_ISDIR(item.st_mode);
}

bool isFile(const std::string& path) {
    struct stat item {};
    return stat(path.c_str(), &item) == 0 && S_ISREG(item.st_mode);
}

// Empty when there is none of them.
std::string firstFolder(std::initializer_list<std::string> paths) {
    for (const std::string& path : paths)
        if (!path.empty() && isFolder(path))
            return path;
    return {};
}

// What holds the folder of programs, share and lib; empty where the program lies in none.
std::string prefixOf(const std::string& folder) {
    const std::string name = nameOf(folder);
    for (const char* programs : {"bin", "sbin", "games", "libexec"})
        if (name == programs)
            return folderOf(folder);
    return {};
}

std::string informationIn(const std::string& folder) {
    const std::string path = below(folder, "Info.plist");
    return isFile(path) ? path : "";
}

}  // namespace

std::optional<BundleLayout> contentsLayout(const std::string& bundle) {
    const std::string contents = below(bundle, "Contents");
    if (!isFolder(contents))
        return std::nullopt;
    return BundleLayout{bundle, "", firstFolder({contents + "/Resources"}),
                        firstFolder({contents + "/Frameworks"}), informationIn(contents)};
}

BundleLayout programLayout(const std::string& program) {
    const std::string folder = folderOf(program);
    if (folder.size() > kProgramsFolder.size() && folder.ends_with(kProgramsFolder)) {
        const std::string bundle = folder.substr(0, folder.size() - kProgramsFolder.size());
        // One that runs may be moved away or replaced meanwhile.
        BundleLayout layout = contentsLayout(bundle).value_or(BundleLayout{bundle, "", "", "", ""});
        layout.executable = program;
        return layout;
    }
    const std::string name = nameOf(program);
    const std::string prefix = prefixOf(folder);
    auto inPrefix = [&](const char* part) {
        return prefix.empty() ? "" : below(prefix, part) + "/" + name;
    };
    BundleLayout layout{program, program, "", "", ""};
    layout.resources = firstFolder({inPrefix("share"), below(folder, "Resources"), folder});
    layout.frameworks = firstFolder({inPrefix("lib"), below(folder, "Frameworks")});
    layout.information = informationIn(layout.resources);
    return layout;
}

const std::string& runningProgram() {
    static const auto* const program = [] {
        char path[PATH_MAX];
        const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
        auto* text = new std::string(path, length > 0 ? static_cast<size_t>(length) : 0);
        constexpr std::string_view kReplaced = " (deleted)";
        if (text->ends_with(kReplaced) && access(text->c_str(), F_OK) != 0)
            text->resize(text->size() - kReplaced.size());
        return text;
    }();
    return *program;
}

}  // namespace foundation
