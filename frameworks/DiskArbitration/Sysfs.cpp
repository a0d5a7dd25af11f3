// SPDX-License-Identifier: MIT
#include "DiskArbitration/Sysfs.h"

#include "CoreFoundation/FolderStream.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <unistd.h>

namespace diskarbitration {

std::string attribute(const std::string& path) {
    std::string line;
    std::getline(std::ifstream(path), line);
    size_t begin = line.find_first_not_of(" \t");
    size_t end = line.find_last_not_of(" \t");
    return begin == std::string::npos ? std::string() : line.substr(begin, end - begin + 1);
}

uint64_t numberAttribute(const std::string& path) {
    std::string text = attribute(path);
    uint64_t number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

bool flagAttribute(const std::string& path) {
    return attribute(path) == "1";
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    const cf::FolderStream stream(opendir(folder.c_str()));
    while (dirent* entry = stream ? readdir(stream.get()) : nullptr)
        if (entry->d_name[0] != '.')
            names.emplace_back(entry->d_name);
    std::sort(names.begin(), names.end());
    return names;
}

std::string realPath(const std::string& path) {
    char real[PATH_MAX];
    return realpath(path.c_str(), real) != nullptr ? real : std::string();
}

bool exists(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

}  // namespace diskarbitration
